"""Writes the test pictures of this folder; see make.sh. An encoder of its own: LZW codes that never compress
(a clear code before the table grows), so that nothing here shares a fault with a decoder."""
import random
import struct
import sys


def pam(name, width, height, pixels):
    """pixels: rows of (r, g, b, a)."""
    head = f"P7\nWIDTH {width}\nHEIGHT {height}\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n"
    with open(name + ".pam", "wb") as out:
        out.write(head.encode() + b"".join(bytes(p) for row in pixels for p in row))


def codes(indices, bits, end=True):
    """The image data: every pixel a code of its own, a clear code often enough to keep the code size."""
    clear, stop = 1 << bits, (1 << bits) + 1
    stream, size, pending, out = [], bits + 1, 0, 0
    for i, index in enumerate(indices):
        if i % ((1 << bits) - 2 or 1) == 0:
            stream.append(clear)
        stream.append(index)
    if end:
        stream.append(stop)
    data = bytearray()
    for code in stream:
        out |= code << pending
        pending += size
        while pending >= 8:
            data.append(out & 255)
            out, pending = out >> 8, pending - 8
    if pending:
        data.append(out)
    return bytes(data)


def blocks(data):
    return b"".join(bytes([len(data[i:i + 255])]) + data[i:i + 255] for i in range(0, len(data), 255)) + b"\0"


def screen(width, height, palette=None, version=b"GIF89a"):
    packed = 0x80 | (len(palette) // 3).bit_length() - 2 if palette else 0
    return version + struct.pack("<HHBBB", width, height, packed, 0, 0) + (palette or b"")


def frame(left, top, width, height, indices, palette=None, bits=2, interlaced=False, data=None):
    packed = (0x80 | (len(palette) // 3).bit_length() - 2 if palette else 0) | (0x40 if interlaced else 0)
    head = b"," + struct.pack("<HHHHB", left, top, width, height, packed) + (palette or b"")
    return head + bytes([bits]) + (blocks(codes(indices, bits)) if data is None else data)


def control(transparent):
    return b"!\xF9\x04" + struct.pack("<BHB", 1, 0, transparent) + b"\0"


def save(name, *parts):
    with open(name + ".gif", "wb") as out:
        out.write(b"".join(parts))


RED, GREEN, BLUE, WHITE = (255, 0, 0), (0, 255, 0), (0, 0, 255), (255, 255, 255)
FOUR = bytes(RED + GREEN + BLUE + WHITE)
COLOURS = [c + (255,) for c in (RED, GREEN, BLUE, WHITE)]
CLEAR = (0, 0, 0, 0)


def rows(width, indices, colours=None):
    colours = colours or COLOURS
    return [[colours[i] for i in indices[at:at + width]] for at in range(0, len(indices), width)]


def sources():
    scene = [[(x * 12, y * 20, 40 if x & y & 1 else 200, 255) for x in range(20)] for y in range(12)]
    pam("scene", 20, 12, scene)
    chance = random.Random(7)
    shades = [(chance.randrange(256), chance.randrange(256), chance.randrange(256), 255) for _ in range(256)]
    pam("noise", 80, 70, [[chance.choice(shades) for _ in range(80)] for _ in range(70)])
    pam("holes", 20, 12, [[CLEAR if (x + y) % 5 == 0 else scene[y][x] for x in range(20)] for y in range(12)])
    patch = [[(200, 10 * x, 30 * y, 255) for x in range(6)] for y in range(5)]
    pam("patch", 6, 5, patch)
    pam("animated", 20, 12, [[patch[y - 2][x - 3] if 3 <= x < 9 and 2 <= y < 7 else CLEAR for x in range(20)]
                             for y in range(12)])


def odd():
    picture = [i * 7 // 3 % 4 for i in range(6)]
    pam("six", 3, 2, rows(3, picture))
    body = frame(0, 0, 3, 2, picture)
    head = screen(3, 2, FOUR)
    save("version87", screen(3, 2, FOUR, b"GIF87a"), body, b";")
    save("local", screen(3, 2, bytes(12)), frame(0, 0, 3, 2, picture, FOUR), b";")
    save("local-only", screen(3, 2), frame(0, 0, 3, 2, picture, FOUR), b";")
    save("no-trailer", head, body)
    save("no-terminator", head, body[:-1])
    save("no-terminator-but-trailer", head, body[:-1], b";")
    save("last-block-longer-than-file", head, frame(0, 0, 3, 2, picture, data=b"\xC8" + codes(picture, 2)))
    save("garbage-behind", head, body, b"\x00\xFF\x2C\x01")
    save("stray-bytes", head, b"\0\0x", body, b";")
    save("empty-screen", screen(0, 0, FOUR), body, b";")
    save("comment", head, b"!\xFE\x03abc\x02de\0", b"!\xFF\x0BNETSCAPE2.0\x03\x01\0\0\0", body, b";")
    text = b"!\x01\x0C" + struct.pack("<HHHHBBBB", 0, 0, 3, 2, 1, 1, 0, 1) + b"\x02Hi\0"
    save("plain-text", head, control(0), text, body, b";")
    save("transparent", head, control(1), body, b";")
    pam("transparent", 3, 2, rows(3, picture, [COLOURS[0], CLEAR, COLOURS[2], COLOURS[3]]))
    save("unused-transparent", head, control(200), body, b";")

    outside = [i % 4 for i in range(15)]
    save("outside", screen(4, 3, FOUR), frame(2, 1, 5, 3, outside), b";")
    seen = rows(5, outside)
    pam("outside", 4, 3, [[CLEAR] * 4] + [[CLEAR] * 2 + seen[y][:2] for y in range(2)])
    save("off-screen", screen(4, 3, FOUR), frame(9, 9, 3, 2, picture), b";")
    pam("off-screen", 4, 3, [[CLEAR] * 4] * 3)

    save("no-palette", screen(4, 1), frame(0, 0, 4, 1, [0, 1, 2, 255], bits=8), b";")
    pam("no-palette", 4, 1, [[(v, v, v, 255) for v in (0, 255, 2, 255)]])
    save("short-palette", screen(4, 1, FOUR[:6]), frame(0, 0, 4, 1, [0, 1, 2, 3]), b";")
    pam("short-palette", 4, 1, [[COLOURS[0], COLOURS[1], (0, 0, 0, 255), (0, 0, 0, 255)]])

    # 65535 x 65535 on a screen of one pixel: only the first row is there, and only it is wanted.
    save("huge-frame", screen(1, 1, FOUR), frame(0, 0, 65535, 65535, [2] * 65535), b";")
    pam("blue", 1, 1, [[COLOURS[2]]])
    # Interlaced, the screen's second row comes last but for a quarter: gigapixels for two of them.
    save("bad-work", screen(1, 2, FOUR), frame(0, 0, 65535, 65535, [2] * 16, interlaced=True), b";")

    save("bad-cut-data", head, frame(0, 0, 3, 2, picture, data=b"\x02" + codes(picture, 2)[:2]))
    few = codes(picture[:5], 2, end=False)
    save("bad-last-block-without-data", head, frame(0, 0, 3, 2, picture, data=blocks(few)[:-1] + b"\x01"))
    save("bad-few-pixels", head, frame(0, 0, 3, 2, picture[:4]), b";")
    save("bad-code", head, frame(0, 0, 3, 2, picture, data=blocks(b"\xFC\xFF\xFF")), b";")
    save("bad-code-size", head, frame(0, 0, 3, 2, picture, bits=12, data=blocks(b"\0\0\0")), b";")
    save("bad-no-frame", head, b";")
    save("bad-header-only", head)
    save("bad-cut-palette", head[:-5])
    save("bad-empty-frame", head, frame(0, 0, 0, 2, []), b";")
    save("bad-cut-extension", head, b"!\xFE\x09abc")
    save("bad-wide", screen(40000, 2, FOUR), frame(0, 0, 3, 2, picture), b";")


{"sources": sources, "odd": odd}[sys.argv[1]]()
