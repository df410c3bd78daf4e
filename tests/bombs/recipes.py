"""Small files that ask for much: each recipe gives the bytes of one."""

import lzma
import struct
import zlib

MEGA = 1 << 20


def deflated_zeros(count):
    """A stream that inflates to so many zeros, a thousandth of their size; made without packing them all."""
    packer = zlib.compressobj(9, wbits=-15)
    block = packer.compress(bytes(MEGA)) + packer.flush(zlib.Z_FULL_FLUSH)
    last = zlib.compressobj(9, wbits=-15)
    end = last.compress(bytes(count % MEGA)) + last.flush()
    # Adler-32 of zeros (RFC 1950): the first sum stays 1, the second counts them.
    return b"\x78\xda" + block * (count // MEGA) + end + struct.pack(">HH", count % 65521, 1)


# -- PNG: a signature and chunks


def chunk(kind, content=b""):
    return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))


def png(width, height, *chunks, depth=8, colour=6, interlace=0):
    header = chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, interlace))
    return b"\x89PNG\r\n\x1a\n" + header + b"".join(chunks) + chunk(b"IEND")


def png_dot(*before):
    """One grey pixel, behind other chunks."""
    return png(1, 1, *before, chunk(b"IDAT", zlib.compress(b"\0\x80")), colour=0)


# -- JPEG: segments


def segment(mark, content=b""):
    return struct.pack(">BBH", 0xFF, mark, len(content) + 2) + content


def jpeg_frame(mark, width, height, components=3):
    parts = b"".join(bytes([index + 1, 0x11, 0]) for index in range(components))
    return segment(mark, struct.pack(">BHHB", 8, height, width, components) + parts)


QUANTISATION = segment(0xDB, b"\0" + bytes([1] * 64))
# Tables whose only code, one zero bit, stands for "nothing follows" (DC) and "end of block" (AC).
HUFFMAN = b"".join(segment(0xC4, bytes([kind]) + bytes([1] + [0] * 15) + b"\0") for kind in (0x00, 0x10))


def jpeg_scan(components, first, last, approximation=0):
    parts = b"".join(bytes([index, 0]) for index in components)
    content = bytes([len(components)]) + parts + bytes([first, last, approximation])
    return segment(0xDA, content)


def jpeg(width, height, *scans, mark=0xC0, before=b"", components=3):
    frame = jpeg_frame(mark, width, height, components)
    return b"\xff\xd8" + before + QUANTISATION + frame + HUFFMAN + b"".join(scans) + b"\xff\xd9"


ALL_ZERO_BLOCKS = jpeg_scan([1, 2, 3], 0, 63) + bytes(64)


def progressive(width, height, scans, components=3):
    """Every scan but the first refines nothing of the first component."""
    first = jpeg_scan(range(1, components + 1), 0, 0) + bytes(width * height // 64 * components // 8 + 8)
    again = jpeg_scan([1], 1, 63) + bytes(width * height // 64 // 8 + 8)
    return jpeg(width, height, first, again * scans, mark=0xC2, components=components)


# -- GIF: a screen and blocks


def gif(width, height, *blocks):
    screen = struct.pack("<HHBBB", width, height, 0x80, 0, 0)
    return b"GIF89a" + screen + b"\0\0\0\xff\xff\xff" + b"".join(blocks) + b";"


def gif_frame(width, height, codes=b"\x02\x16\x0a\x00"):
    """A frame; `codes` are its code size and its sub-blocks, without the end of those."""
    return b"," + struct.pack("<HHHHB", 0, 0, width, height, 0) + codes[:1] + codes[1:] + b"\0"


GIF_DOT = b"," + struct.pack("<HHHHB", 0, 0, 1, 1, 0) + b"\x02\x02\x44\x01\0"


# -- TIFF: little endian, one directory of entries (tag, type, count, value)

SHORT, LONG = 3, 4


def tiff(entries, data=b"", following=0):
    """`data` lies at 8; the directory behind it."""
    entries = sorted(entries)
    place = 8 + len(data)
    rows = b"".join(struct.pack("<HHII", *entry) for entry in entries)
    return (
        struct.pack("<2sHI", b"II", 42, place)
        + data
        + struct.pack("<H", len(entries))
        + rows
        + struct.pack("<I", following)
    )


def tiff_page(width, height, compression=1, bits=8, samples=1, strips=(8, 64), rows=None, more=()):
    """The entries of a page with one strip: (place, size)."""
    return [
        (256, LONG, 1, width),
        (257, LONG, 1, height),
        (258, SHORT, 1, bits),
        (259, SHORT, 1, compression),
        (262, SHORT, 1, 1),
        (273, LONG, 1, strips[0]),
        (277, SHORT, 1, samples),
        (278, LONG, 1, rows or height),
        (279, LONG, 1, strips[1]),
        *more,
    ]


def xz_of_huge_window(content):
    """Packed bytes that tell a dictionary of 4 GB (the .xz format 1.2.1, 3.1 and 5.3.1)."""
    packed = bytearray(lzma.compress(content, lzma.FORMAT_XZ, preset=0))
    size = (packed[12] + 1) * 4
    place = packed.index(b"\x21\x01", 12) + 2
    packed[place] = 40
    packed[12 + size - 4 : 12 + size] = struct.pack("<I", zlib.crc32(packed[12 : 12 + size - 4]))
    return bytes(packed)


def tiff_strip(width, height, compression, packed, **about):
    return tiff(tiff_page(width, height, compression, strips=(8, len(packed)), **about), packed)


# -- PICT, version 2: 512 bytes of file header, the frame, opcodes


def pict(width, height, *opcodes):
    frame = struct.pack(">HHHH", 0, 0, height, width)
    head = struct.pack(">H", 0) + frame + b"\x00\x11\x02\xff\x0c\x00"
    resolution = struct.pack(">hhii", -2, 0, 72 << 16, 72 << 16) + frame + bytes(4)
    return bytes(512) + head + resolution + b"".join(opcodes) + b"\x00\xff"


def pict_rect(opcode, width, height):
    return struct.pack(">HHHHH", opcode, 0, 0, height, width)


def pict_region(rows):
    """A region of so many rows, each of two points, for opcode 0x0081 (paint region)."""
    body = b"".join(struct.pack(">HHHH", y, 0, 30000, 0x7FFF) for y in range(rows)) + b"\x7f\xff"
    return struct.pack(">HHHHHH", 0x0081, 10 + len(body), 0, 0, 30000, 30000) + body


def pict_still(kind, data, width, height):
    """A compressed still, placed where it comes (QuickTime: opcode 0x8200)."""
    matrix = struct.pack(">9i", 1 << 16, 0, 0, 0, 1 << 16, 0, 0, 0, 1 << 30)
    place = struct.pack(">HHHHHII", 0, 0, 0, height, width, 0, 0)
    about = struct.pack(
        ">I4s12x4xIIHHIIIH", 86, kind, 0, 512, width, height, 72 << 16, 72 << 16, len(data), 1
    )
    about += bytes(32) + struct.pack(">Hh", 32, -1)
    body = bytes(2) + matrix + bytes(12) + place + about + data
    return b"\x82\x00" + struct.pack(">I", len(body)) + body + bytes(len(body) % 2)


def exif(*entries, following=0):
    rows = b"".join(struct.pack("<HHII", *entry) for entry in entries)
    return (
        struct.pack("<2sHI", b"II", 42, 8)
        + struct.pack("<H", len(entries))
        + rows
        + struct.pack("<I", following)
    )


def icc(size, told=None, kind=b"mntrRGB XYZ "):
    """A profile of zeros with a valid head, which tells another size if one is given."""
    head = struct.pack(">I4sI", told or size, b"none", 0x02400000) + kind + bytes(12) + b"acsp"
    return (head + bytes(size))[:size]


def icc_in_jpeg(profile):
    """The profile in as many segments as it takes."""
    parts = [profile[place : place + 65000] for place in range(0, len(profile), 65000)][:255]
    return b"".join(
        segment(0xE2, b"ICC_PROFILE\0" + bytes([number + 1, len(parts)]) + part)
        for number, part in enumerate(parts)
    )
