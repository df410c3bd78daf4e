#!/usr/bin/env python3
"""Writes the pictures beside it, byte by byte; what they show is told in tests/TestPict*.cpp.

Source: Inside Macintosh, Imaging With QuickDraw (1994), appendix A.
"""

import pathlib
import struct
import zlib

HERE = pathlib.Path(__file__).parent
BLACK, WHITE, RED, GREEN, BLUE = (0, 0, 0), (255, 255, 255), (255, 0, 0), (0, 255, 0), (0, 0, 255)


def words(*values):
    return b"".join(struct.pack(">H", value & 0xFFFF) for value in values)


def rect(left, top, right, bottom):
    return words(top, left, bottom, right)


def point(x, y):
    return words(y, x)


def rgb16(colour):
    return words(*(component * 257 for component in colour))


def even(data):
    return data + b"\0" * (len(data) % 2)


def op(code, *data):
    """An opcode of version 2: a word, its data, and a byte more when that is odd."""
    return words(code) + even(b"".join(data))


def op1(code, *data):
    """An opcode of version 1."""
    return bytes([code]) + b"".join(data)


def version1(frame, *opcodes):
    return words(0) + rect(*frame) + b"\x11\x01" + b"".join(opcodes) + b"\xff"


EXTENDED = -2


def version2(frame, *opcodes, header=None, end=words(0xFF)):
    header = header or words(0x0C00, -1, -1) + bytes(16) + bytes(4)
    return words(0) + rect(*frame) + words(0x0011, 0x02FF) + header + b"".join(opcodes) + end


def extended(dpi, native):
    """The header that tells a resolution, and the frame at that resolution."""
    return words(0x0C00, EXTENDED, 0) + struct.pack(">II", dpi << 16, dpi << 16) + rect(*native) + bytes(4)


def region(box, *rows):
    """Rows are lists of y and the x positions at which inside and outside swap."""
    data = b"".join(words(*row, 0x7FFF) for row in rows) + (words(0x7FFF) if rows else b"")
    return words(10 + len(data)) + rect(*box) + data


def colours(code, colour):
    return op(code, rgb16(colour))


def fore(colour):
    return colours(0x1A, colour)


def back(colour):
    return colours(0x1B, colour)


def op_colour(colour):
    return colours(0x1F, colour)


def pix_map(width, height, bits, components=1, pack=0, row_bytes=None):
    row_bytes = row_bytes or (width * bits + 15) // 16 * 2
    return (
        words(0x8000 | row_bytes) + rect(0, 0, width, height)
        + words(0, pack) + struct.pack(">III", 0, 72 << 16, 72 << 16)  # version, pack type, size, resolution
        + words(16 if bits > 8 else 0, bits, components, 8 if bits == 32 else bits)
        + bytes(12))  # plane offset, table, reserved


def table(entries, device=False, values=None):
    values = values or range(len(entries))
    flags = 0x8000 if device else 0
    rows = [words(value) + rgb16(colour) for value, colour in zip(values, entries)]
    return bytes(4) + words(flags, len(entries) - 1) + b"".join(rows)


def place(width, height, target=None, mode=0, source=None):
    """Source, target and mode of a bitmap opcode."""
    return rect(*(source or (0, 0, width, height))) + rect(*(target or (0, 0, width, height))) + words(mode)


def literal(row, unit=1, counted=1):
    """A packed row that is all copied, behind its length."""
    packed = b""
    for at in range(0, len(row), 128 * unit):
        piece = row[at:at + 128 * unit]
        packed += bytes([len(piece) // unit - 1]) + piece
    return struct.pack(">B" if counted == 1 else ">H", len(packed)) + packed


# Two pixels of 32 bits are 8 bytes: the least that is packed. This little picture is 3 wide and 2 high.
SIX = [RED, GREEN, BLUE, WHITE, BLACK, RED]


def six(code_pack, rows, components=3, row_bytes=12, bits=32):
    return version2((0, 0, 3, 2), op(
        0x9A, words(0, 0xFF), pix_map(3, 2, bits, components, code_pack, row_bytes), place(3, 2), rows))


def planes(pixels, first=b"", width=None):
    width = width or len(pixels)
    return first + b"".join(bytes(p[i] for p in pixels).ljust(width, b"\x55") for i in range(3))


def five(colour):
    return words(colour[0] >> 3 << 10 | colour[1] >> 3 << 5 | colour[2] >> 3)


def bitmaps():
    bits = bytes([0b10100000, 0b00100000, 0b01010101, 0b01000000])
    yield "v1-bits", version1((0, 0, 11, 2), op1(
        0x90, words(2), rect(0, 0, 11, 2), place(11, 2), bits))
    yield "v1-packbits", version1((0, 0, 64, 2), op1(
        0x98, words(8), rect(0, 0, 64, 2), place(64, 2),
        b"\x02\xf9\xff",  # one run of 8 bytes
        b"\x08\xfd\x00\x80\x03\x0f\xf0\x00\xff"))  # 4 times 0, a filler, 4 copied
    four = [WHITE, RED, GREEN, BLUE]
    yield "v2-2bit-raw", version2((0, 0, 5, 2), op(
        0x98, pix_map(5, 2, 2), table(four), place(5, 2),
        bytes([0b00011011, 0b01000000, 0b11100100, 0b10000000])))
    yield "v2-4bit-odd", version2((0, 0, 15, 1), op(
        0x98, pix_map(15, 1, 4), table(four), place(15, 1), literal(b"\x01\x23\x01\x23\x01\x23\x00\x30")))
    wide = b"\x01" * 84 + b"\x02" * 84 + b"\x03" * 84
    yield "v2-8bit-word-count", version2((0, 0, 252, 1), op(
        0x98, pix_map(252, 1, 8), table(four), place(252, 1), literal(wide, counted=2)))
    # The last byte of a row is padding, and the packer left it out.
    yield "v2-8bit-short-padding", version2((0, 0, 9, 1), op(
        0x98, pix_map(9, 1, 8), table(four), place(9, 1), literal(b"\x01\x02\x03" * 3)))
    eight = literal(bytes([7, 200, 9, 7, 200, 9, 7, 7]))
    values = table([RED, GREEN, BLUE], values=[9, 200, 7])
    yield "v2-palette-values", version2((0, 0, 8, 1), op(0x98, pix_map(8, 1, 8), values, place(8, 1), eight))
    places = literal(bytes([0, 1, 2, 0, 1, 2, 0, 0]))
    yield "v2-palette-device", version2((0, 0, 8, 1), op(
        0x98, pix_map(8, 1, 8), table([RED, GREEN, BLUE], True, [9, 200, 7]), place(8, 1), places))
    yield "v2-palette-no-values", version2((0, 0, 8, 1), op(
        0x98, pix_map(8, 1, 8), table([RED, GREEN, BLUE], False, [0, 0, 0]), place(8, 1), places))

    top, low = SIX[:3], SIX[3:]
    raw = b"".join(b"\x55" + bytes(p) for p in SIX)
    yield "v2-32bit-pack1", six(1, raw)
    yield "v2-32bit-pack2", six(2, b"".join(map(bytes, SIX)))
    yield "v2-32bit-pack4", six(4, literal(planes(top)) + literal(planes(low)))
    yield "v2-32bit-pack0", six(0, literal(planes(top)) + literal(planes(low)))
    alpha = b"\x55" * 3
    yield "v2-32bit-4comp", six(4, literal(planes(top, alpha)) + literal(planes(low, alpha)), components=4)
    yield "v2-32bit-padded", six(
        4, literal(planes(top, width=4)) + literal(planes(low, width=4)), row_bytes=16)
    fives = [b"".join(map(five, row)) for row in (top, low)]
    yield "v2-16bit-narrow", six(3, fives[0] + fives[1], bits=16, row_bytes=6)  # below 8 bytes: not packed
    padded = [row + b"\0\0" for row in fives]
    yield "v2-16bit-pack1", six(1, padded[0] + padded[1], bits=16, row_bytes=8)
    runs = literal(padded[0], 2) + b"\x06" + b"\x00" + five(WHITE) + b"\xfe" + five(BLACK)  # 1 copied, 3 times
    yield "v2-16bit-pack3", six(3, runs, bits=16, row_bytes=8)


def bit_op(mode, bits, target=(0, 0, 4, 2)):
    """A bitmap of 4 x 2 whose rows are the upper halves of two bytes."""
    return op(0x90, words(2), rect(0, 0, 4, 2), place(4, 2, target, mode),
              bytes([bits[0], 0, bits[1], 0]))


def pixel_op(mode, pixels):
    """A row of direct pixels, unpacked."""
    width = len(pixels)
    return op(0x9A, words(0, 0xFF), pix_map(width, 1, 32, 3, 1), place(width, 1, mode=mode),
              b"".join(b"\0" + bytes(p) for p in pixels))


def painted(colour, box=(0, 0, 4, 2)):
    return fore(colour) + op(0x31, rect(*box)) + fore(BLACK)


def placing():
    rows = literal(planes(SIX[:3])) + literal(planes(SIX[3:]))
    mask = region((1, 0, 3, 2), [0, 1, 2], [1, 2, 3], [2, 1, 3])
    yield "v2-mask", version2((0, 0, 3, 2), op(
        0x9B, words(0, 0xFF), pix_map(3, 2, 32, 3, 4), place(3, 2), mask, rows))
    yield "v2-doubled", version2((0, 0, 6, 4), op(
        0x9A, words(0, 0xFF), pix_map(3, 2, 32, 3, 4), place(3, 2, (0, 0, 6, 4)), rows))
    halves = literal(planes([BLACK, WHITE, RED, RED])) + literal(planes([WHITE, BLACK, RED, RED]))
    yield "v2-halved", version2((0, 0, 2, 1), op(
        0x9A, words(0, 0xFF), pix_map(4, 2, 32, 3, 4), place(4, 2, (0, 0, 2, 1)), halves))
    yield "v2-cropped", version2((0, 0, 2, 2), op(
        0x9A, words(0, 0xFF), pix_map(3, 2, 32, 3, 4), place(3, 2, (0, 0, 2, 2), source=(1, 0, 3, 2)), rows))
    yield "v2-frame-elsewhere", version2((100, -50, 103, -48), op(
        0x9A, words(0, 0xFF), pix_map(3, 2, 32, 3, 4), place(3, 2, (100, -50, 103, -48)), rows))
    yield "v2-clip", version2(
        (0, 0, 3, 2), op(0x01, region((0, 1, 2, 2))),
        op(0x9A, words(0, 0xFF), pix_map(3, 2, 32, 3, 4), place(3, 2), rows))
    # 144 dots an inch: twice as many pixels a side as the frame has points.
    yield "v2-extended-144", version2(
        (0, 0, 2, 1), op(0x31, rect(1, 0, 4, 1)), header=extended(144, (0, 0, 4, 2)))


def modes():
    on_red = [painted(RED), fore(BLUE), back(GREEN)]
    for mode, name in enumerate(["copy", "or", "xor", "bic", "not-copy", "not-or", "not-xor", "not-bic"]):
        yield "mode-bits-" + name, version2((0, 0, 4, 2), *on_red, bit_op(mode, [0xC0, 0x30]))
    grey, dark = (128, 128, 128), (64, 64, 64)
    under = painted(grey)
    yield "mode-blend", version2((0, 0, 4, 1), under, op_colour(grey), pixel_op(32, [WHITE, BLACK, RED, grey]))
    yield "mode-add-pin", version2((0, 0, 4, 1), under, op_colour((200,) * 3), pixel_op(33, [grey, dark, BLACK, RED]))
    yield "mode-add-over", version2((0, 0, 4, 1), under, pixel_op(34, [grey, dark, BLACK, RED]))
    yield "mode-sub-pin", version2((0, 0, 4, 1), under, op_colour((32,) * 3), pixel_op(35, [grey, dark, BLACK, RED]))
    yield "mode-transparent", version2((0, 0, 4, 1), under, pixel_op(36, [WHITE, dark, WHITE, RED]))
    yield "mode-add-max", version2((0, 0, 4, 1), under, pixel_op(37, [grey, dark, WHITE, RED]))
    yield "mode-sub-over", version2((0, 0, 4, 1), under, pixel_op(38, [grey, dark, BLACK, RED]))
    yield "mode-add-min", version2((0, 0, 4, 1), under, pixel_op(39, [grey, dark, WHITE, RED]))
    yield "mode-dither-copy", version2((0, 0, 4, 1), under, pixel_op(64, [grey, dark, WHITE, RED]))
    yield "mode-colourised", version2((0, 0, 4, 1), fore(RED), back(BLUE), pixel_op(0, [BLACK, WHITE, RED, BLUE]))


STRIPES = bytes([0xAA] * 8)


def polygon(*points):
    xs, ys = [p[0] for p in points], [p[1] for p in points]
    data = rect(min(xs), min(ys), max(xs), max(ys)) + b"".join(point(*p) for p in points)
    return words(len(data) + 2) + data


def shapes():
    box = rect(1, 1, 7, 7)
    frame = (0, 0, 8, 8)
    yield "rect-frame", version2(frame, op(0x07, point(2, 1)), op(0x30, box))
    yield "rect-verbs", version2(
        frame,
        op(0x31, rect(0, 0, 8, 2)),  # painted black
        op(0x33, rect(4, 0, 6, 4)),  # turned over, in two halves
        op(0x0A, STRIPES), op(0x34, rect(0, 4, 8, 6)),  # filled with stripes
        op(0x31, rect(0, 6, 8, 8)), back(RED), op(0x32, rect(2, 6, 6, 8)))  # erased to red
    yield "rect-same", version2(frame, op(0x30, box), fore(RED), op(0x07, point(2, 2)), op(0x38))
    yield "oval-paint", version2(frame, op(0x51, rect(0, 0, 8, 8)))
    yield "oval-frame", version2(frame, op(0x50, rect(0, 0, 8, 8)))
    yield "oval-same-of-rect", version2(frame, op(0x31, rect(0, 0, 8, 8)), fore(WHITE), op(0x59))
    yield "round-rect", version2(frame, op(0x0B, point(6, 6)), op(0x41, rect(0, 0, 8, 8)))
    # A quarter from twelve to three o'clock, then one from six to nine, told backwards.
    yield "arc-paint", version2(
        frame, op(0x61, rect(0, 0, 8, 8), words(0, 90)), fore(RED), op(0x69, words(270, -90)))
    yield "arc-frame", version2(frame, op(0x60, rect(0, 0, 8, 8), words(90, 180)))
    triangle = polygon((0, 0), (8, 0), (0, 8), (0, 0))
    yield "polygon-paint", version2(frame, op(0x71, triangle))
    yield "polygon-frame", version2(frame, op(0x70, polygon((1, 1), (6, 1), (6, 6), (1, 1))))
    ring = region((1, 1, 7, 7), [1, 1, 7], [3, 3, 5], [5, 3, 5], [7, 1, 7])
    yield "region-paint", version2(frame, op(0x81, ring))
    yield "region-frame", version2(frame, op(0x80, region((0, 0, 7, 7), [0, 0, 5], [2, 5, 7], [7, 0, 7])))
    yield "region-invert", version2(frame, op(0x31, rect(0, 0, 8, 4)), op(0x83, ring))


def pens():
    frame = (0, 0, 8, 8)
    yield "line-flat", version2(frame, op(0x20, point(0, 1), point(7, 4)))
    yield "line-steep-pen", version2(
        frame, op(0x07, point(2, 1)), op(0x22, point(1, 0), bytes([2, 7])))
    # Along the top, down the right side, back to the left: three ways to say where to.
    yield "line-from", version2(
        frame, op(0x20, point(0, 0), point(7, 0)), op(0x21, point(7, 7)), op(0x23, bytes([256 - 7, 0])))
    yield "pen-pattern-or", version2(
        frame, painted(RED, frame), fore(BLUE), op(0x09, STRIPES), op(0x08, words(9)), op(0x31, rect(2, 2, 6, 6)))
    yield "pen-xor", version2(
        frame, op(0x08, words(10)), op(0x31, rect(0, 0, 6, 6)), op(0x31, rect(2, 2, 8, 8)))
    yield "origin", version2(frame, op(0x0C, words(2, 3)), op(0x31, rect(2, 3, 4, 5)))
    old = [33, 30, 205, 341, 409, 273, 137, 69]
    yield "old-colours", version1((0, 0, 8, 1), *(
        op1(0x0E, struct.pack(">I", number)) + op1(0x31, rect(i, 0, i + 1, 1)) for i, number in enumerate(old)))
    tile = pix_map(2, 2, 8) + table([RED, GREEN, BLUE])
    yield "pixel-pattern", version2(
        frame, fore(RED), op(0x14, words(1), bytes(8), tile, bytes([0, 1, 1, 2])), op(0x34, rect(1, 1, 8, 8)))
    yield "dithered-pattern", version2(
        (0, 0, 2, 1), op(0x13, words(2), bytes(8), rgb16(GREEN)), op(0x31, rect(0, 0, 1, 1)))
    yield "hilite", version2(
        (0, 0, 4, 1), painted(RED, (0, 0, 1, 1)), colours(0x1D, BLUE), op(0x1C),
        op(0x33, rect(0, 0, 3, 1)), op(0x33, rect(2, 0, 4, 1)))


def description(kind, data, width, height, depth, name, table_id=-1):
    return (
        struct.pack(">I4s", 86, kind) + bytes(8)  # size, compressor, reserved
        + words(1, 1) + b"appl" + struct.pack(">II", 0, 512)  # version, vendor, qualities
        + words(width, height) + struct.pack(">III", 72 << 16, 72 << 16, len(data))
        + words(1) + bytes([len(name)]) + name.ljust(31, b"\0") + words(depth, table_id) + data)


def matrix(scale_x=1, scale_y=1, x=0, y=0):
    fixed = [scale_x, 0, 0, 0, scale_y, 0, x, y]
    return struct.pack(">8iI", *(int(value * 65536) for value in fixed), 1 << 30)


def quick_time(kind, data, width, height, depth, name=b"", where=None, mask=b"", table_id=-1):
    return op(
        0x8200, struct.pack(">I", 2 + 36 + 12 + 2 + 8 + 4 + 4 + len(mask) + 86 + len(data)), words(0),
        where or matrix(), bytes(12),  # no matte
        words(0), rect(0, 0, width, height), struct.pack(">II", 0, len(mask)), mask,
        description(kind, data, width, height, depth, name, table_id))


def fallback(*opcodes):
    message = b"".join(opcodes)
    return op(0x07, words(0xAE, len(message))) + message


def stills():
    pixels = b"".join(b"\0" + bytes(p) for p in SIX)
    hidden = fallback(op(0x31, rect(0, 0, 8, 8)))
    yield "quicktime-raw", version2((0, 0, 3, 2), quick_time(b"raw ", pixels, 3, 2, 32, b"None"), hidden)
    yield "quicktime-placed", version2((0, 0, 8, 6), quick_time(
        b"raw ", pixels, 3, 2, 32, b"None", matrix(2, 2, 1, 1), region((1, 1, 7, 3))), op(0x31, rect(7, 5, 8, 6)))
    yield "quicktime-unknown", version2((0, 0, 3, 2), quick_time(b"Qdrw", pixels, 3, 2, 32, b"Curves\x8e"), hidden)
    yield "quicktime-uncompressed", version2((0, 0, 3, 2), op(
        0x8201, struct.pack(">I", 2 + 36 + 12 + 2 + 68 + 24), words(0), matrix(), bytes(12),
        words(0x9A), words(0, 0xFF), pix_map(3, 2, 32, 3, 1), place(3, 2), pixels), hidden)
    red, green, blue, white = map(five, (RED, GREEN, BLUE, WHITE))
    pizza = (
        bytes([0xE1, 0, 0, 0]) + b"\xa0" + red  # a block of red
        + b"\xc0" + white + five(BLACK) + bytes([0xF0, 0xF0, 0x0F, 0x0F])  # 3 white, 0 black
        + blue + green * 15  # sixteen colours, the first without the upper bit
        + bytes([green[0], green[1], white[0] | 0x80, white[1]]) + bytes([0xFF, 0, 0, 0]))  # four, unannounced
    yield "quicktime-road-pizza", version2((0, 0, 8, 8), quick_time(b"rpza", pizza, 8, 8, 16, b"Video"), hidden)
    one = bytes([255, 0, 0, 255, 0, 0])  # luma of a block's corners, no colour
    warm = bytes([73, 73, 73, 73, 256 - 37, 91])  # 73 + 2 * 91, 73 + 37 / 2 - 91, 73 - 2 * 37: red
    books = (
        words(0x2200, 4 + 12) + one + warm  # for whole blocks
        + words(0x2000, 4 + 6) + bytes([0, 255, 0, 255, 0, 0]))  # for quarters
    vectors = words(0x3000, 4 + 4 + 3 * 1 + 4) + struct.pack(">I", 0b0010 << 28) + bytes([0, 1, 0, 0, 0, 0, 0])
    strip = books + vectors
    cinepak = (
        struct.pack(">I", 10 + 12 + len(strip)) + words(8, 8, 1)
        + words(0x1000, 12 + len(strip), 0, 0, 8, 8) + strip)
    yield "quicktime-cinepak", version2((0, 0, 8, 8), quick_time(b"cvid", cinepak, 8, 8, 24, b"Cinepak"), hidden)
    runs = (
        bytes([0, 0, 0, 0, 0, 0])  # length, header: all rows
        + bytes([1, 256 - 2, *RED, 1, *GREEN, 255])  # twice red, once green
        + bytes([2, 2, *BLUE, *WHITE, 255]) + bytes([0]))  # one left out, two copied
    yield "quicktime-animation", version2((0, 0, 3, 2), quick_time(b"rle ", runs, 3, 2, 24, b"Animation"), hidden)


def png(width, height, rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    head = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)  # 8 bits, RGBA
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head)
            + chunk(b"IDAT", zlib.compress(b"".join(b"\0" + row for row in rows))) + chunk(b"IEND", b""))


def bmp(width, height, depth, palette, rows):
    """Rows from the lowest up, each filled to four bytes."""
    pixels = b"".join(row.ljust((len(row) + 3) // 4 * 4, b"\x55") for row in rows)
    start = 14 + 40 + 4 * len(palette)
    return (
        b"BM" + struct.pack("<IHHI", start + len(pixels), 0, 0, start)
        + struct.pack("<IiiHHIIiiII", 40, width, height, 1, depth, 0, len(pixels), 0, 0, len(palette), 0)
        + b"".join(bytes(reversed(c)) + b"\0" for c in palette) + pixels)


def whole_files():
    rgba = [b"".join(bytes(p) + b"\xff" for p in SIX[:3]), bytes([0, 0, 0, 0]) + b"\0\0\0\xff\xff\0\0\xff"]
    hidden = fallback(op(0x31, rect(0, 0, 8, 8)))
    yield "quicktime-png", version2((0, 0, 3, 2), quick_time(b"png ", png(3, 2, rgba), 3, 2, 32, b"PNG"), hidden)
    # Some writers put a blank bitmap over the still at once, for readers that know no stills.
    blank = op(0x9A, words(0, 0xFF), pix_map(3, 2, 32, 3, 1), place(3, 2), bytes(4 * 6))
    yield "quicktime-stand-in", version2(
        (0, 0, 3, 2), quick_time(b"png ", png(3, 2, rgba), 3, 2, 32, b"PNG"), blank)
    numbers = bmp(3, 2, 4, [WHITE, RED, GREEN, BLUE, BLACK], [bytes([0x04, 0x10]), bytes([0x12, 0x30])])
    yield "quicktime-bmp-4bit", version2((0, 0, 3, 2), quick_time(b"BMP ", numbers, 3, 2, 4, b"BMP", table_id=4), hidden)
    triples = bmp(3, -2, 24, [], [b"".join(bytes(reversed(p)) for p in row) for row in (SIX[:3], SIX[3:])])
    yield "quicktime-bmp-24bit", version2((0, 0, 3, 2), quick_time(b"BMP ", triples, 3, 2, 24, b"BMP"), hidden)
    # Numbers into the system's palette, into one of its own, and grey ones.
    yield "quicktime-raw-system", version2((0, 0, 3, 1), quick_time(
        b"raw ", bytes([0, 35, 255, 0]), 3, 1, 8, b"None", table_id=8))
    yield "quicktime-raw-grey", version2((0, 0, 3, 1), quick_time(b"raw ", bytes([0, 128, 255, 0]), 3, 1, 40, b"None"))
    # No mark before the message: it is known by its words.
    pixels = b"".join(b"\0" + bytes(p) for p in SIX)
    yield "quicktime-message", version2(
        (0, 0, 3, 2), quick_time(b"raw ", pixels, 3, 2, 32, b"None"),
        text(0, 2, b"QuickTime\xaa and a"), op(0x29, b"\0", b"\x05Video"))


def tiff(width, height, pixels):
    """One strip of RGB, big-endian."""
    data = b"".join(map(bytes, pixels))
    count = 8  # entries of the directory, which begins at 8; the bits of a sample lie behind it
    behind = 8 + 2 + 12 * count + 4
    short, long = 3, 4
    entries = [(256, short, 1, width), (257, short, 1, height), (258, short, 3, behind), (262, short, 1, 2),
               (273, long, 1, behind + 6), (277, short, 1, 3), (278, short, 1, height), (279, long, 1, len(data))]
    packed = b"".join(
        struct.pack(">HHI", tag, kind, n) + struct.pack(">HH" if kind == short and n == 1 else ">I",
                                                        *((value, 0) if kind == short and n == 1 else (value,)))
        for tag, kind, n, value in entries)
    return b"MM\0*" + struct.pack(">I", 8) + words(count) + packed + bytes(4) + words(8, 8, 8) + data


def more_stills():
    yield "quicktime-tiff", version2((0, 0, 3, 2), quick_time(b"tiff", tiff(3, 2, SIX), 3, 2, 24, b"TIFF"))
    hidden = fallback(op(0x31, rect(0, 0, 8, 8)))
    graphics = (
        bytes(4)
        + b"\x60\x23"  # a block of number 35: red
        + b"\x80\x00\xff" + words(0xF0F0)  # a pair, white and black: rows in turn
        + b"\x20"  # the same block once more
        + b"\xa0\x00\xff\x23\xb9" + struct.pack(">I", 0x1B1B1B1B)  # four: 0, 1, 2, 3 in each row
        + b"\x90\x00" + words(0x8421)  # the pair again, by its number
        + b"\xe0" + bytes([35] * 15 + [0])  # sixteen colours
        + b"\x40"  # the two before, in turn
    )
    yield "quicktime-graphics", version2(
        (0, 0, 8, 16), quick_time(b"smc ", graphics, 8, 16, 8, b"Graphics", table_id=8), hidden)
    rows = [bytes([p[i] for p in line]) for i in range(3) for line in (SIX[:3], SIX[3:])]
    packed = [bytes([2]) + row for row in rows]
    planar = words(*map(len, packed)) + b"".join(packed)
    yield "quicktime-planar", version2((0, 0, 3, 2), quick_time(b"8BPS", planar, 3, 2, 24, b"Planar RGB"), hidden)


def text(x, y, string):
    return op(0x28, point(x, y), bytes([len(string)]), string)


def texts():
    frame = (0, 0, 100, 60)
    size = op(0x03, words(21)) + op(0x0D, words(20))
    yield "text", version2(
        frame, size, fore(RED), text(10, 30, b"HI"), op(0x29, bytes([50]), b"\x02HI"), op(0x2A, bytes([25]), b"\x01H"))
    yield "text-bold", version2(frame, size, op(0x04, b"\x01"), text(10, 30, b"HI"))
    yield "text-underlined", version2(frame, size, op(0x04, b"\x04"), text(10, 30, b"    "))
    yield "text-ratio", version2(frame, size, op(0x10, point(1, 1), point(2, 2)), text(10, 30, b"HI"))
    yield "text-copied", version2(frame, size, painted(BLUE, frame), op(0x05, words(0)), text(10, 30, b"  "))


def reserved():
    """After each code that means nothing, a pixel shows that the next one was found."""
    codes = [
        (0x17, b""), (0x24, words(3) + b"abc"), (0x2F, words(0)), (0x35, bytes(8)), (0x3D, b""),
        (0x65, bytes(12)), (0x6D, bytes(4)), (0x75, words(10) + bytes(8)), (0x7D, b""),
        (0x85, words(10) + bytes(8)), (0x92, words(2) + b"ab"), (0x9C, words(1) + b"a"), (0xA0, words(7)),
        (0xA1, words(7, 1) + b"a"), (0xA2, words(2) + b"ab"), (0xB0, b""), (0xD0, struct.pack(">I", 3) + b"abc"),
        (0x0100, bytes(2)), (0x02FF, bytes(4)), (0x0BFF, bytes(22)), (0x7F00, bytes(254)), (0x8000, b""),
        (0x8100, struct.pack(">I", 1) + b"a"), (0xFFFF, struct.pack(">I", 0))]
    opcodes = [op(code, data) + op(0x31, rect(i, 0, i + 1, 1)) for i, (code, data) in enumerate(codes)]
    yield "reserved", version2((0, 0, len(codes), 1), *opcodes)


def headers():
    dot = op(0x31, rect(0, 0, 1, 1))
    yield "header-file", bytes(512) + version2((0, 0, 2, 1), dot)
    yield "header-file-v1", b"DRWG" + bytes(508) + version1((0, 0, 2, 1), op1(0x31, rect(0, 0, 1, 1)))
    yield "header-version-0", version2((0, 0, 2, 1), dot, header=words(0x0C00) + bytes(24))
    yield "header-none", words(0) + rect(0, 0, 2, 1) + words(0x0011, 0x02FF) + dot + words(0xFF)
    yield "end-missing", version2((0, 0, 2, 1), dot, end=b"")
    yield "end-garbage", version2((0, 0, 2, 1), dot) + b"\x9a" * 99


def hostile():
    """What has to be refused; the test's table tells why."""
    pixels = literal(planes(SIX[:3]))
    bits = [words(0, 0xFF), pix_map(3, 2, 32, 3, 4), place(3, 2)]
    yield "bad-row-missing", version2((0, 0, 3, 2), op(0x9A, *bits, pixels), end=b"")
    yield "bad-row-short", version2((0, 0, 3, 2), op(0x9A, *bits, pixels, literal(b"\0" * 8)))
    yield "bad-depth", version2((0, 0, 3, 2), op(0x9A, words(0, 0xFF), pix_map(3, 2, 24, 3, 1), place(3, 2)))
    yield "bad-row-bytes", version2((0, 0, 3, 2), op(
        0x9A, words(0, 0xFF), pix_map(3, 2, 32, 3, 1, row_bytes=8), place(3, 2), bytes(16)))
    yield "bad-bounds-empty", version2((0, 0, 3, 2), op(
        0x9A, words(0, 0xFF), pix_map(3, 0, 32, 3, 1), place(3, 2)))
    yield "bad-region-size", version2((0, 0, 3, 2), op(0x01, words(4, 0)))
    yield "bad-region-rows", version2((0, 0, 3, 2), op(0x01, region((0, 0, 3, 2), [1, 0, 3], [0, 0, 3])))
    yield "bad-opcode-cut", version2((0, 0, 3, 2), words(0x30, 0, 0), end=b"")
    yield "bad-palette", version2((0, 0, 3, 2), op(
        0x98, pix_map(3, 2, 8), bytes(4) + words(0x8000, 0x7FFF) + bytes(64)))
    yield "bad-pattern-size", version2((0, 0, 3, 2), op(0x14, words(1), bytes(8), pix_map(2000, 2000, 1)))
    yield "bad-frame-huge", version2((-32768, -32768, 32767, 32767), op(0x31, rect(0, 0, 1, 1)))
    yield "bad-still-cut", version2((0, 0, 3, 2), quick_time(b"raw ", b"\0" * 9, 3, 2, 32, b"None"))
    yield "bad-still-huge", version2((0, 0, 3, 2), quick_time(b"cvid", b"\0" * 64, 32000, 32000, 24, b"Cinepak"))
    yield "bad-still-short", version2((0, 0, 3, 2), quick_time(b"cvid", b"\0" * 64, 4000, 4000, 24, b"Cinepak"))
    yield "bad-still-picture", version2((0, 0, 3, 2), quick_time(
        b"PICT", version2((0, 0, 3, 2)), 3, 2, 32, b"Pict"))
    yield "bad-still-tilted", version2((0, 0, 3, 2), quick_time(
        b"raw ", bytes(24), 3, 2, 32, b"None", matrix(-1, 1, 3, 0)))


for made in (bitmaps, placing, modes, shapes, pens, stills, whole_files, more_stills, texts, reserved, headers, hostile):
    for name, data in made():
        (HERE / (name + ".pict")).write_bytes(data)
