"""Writes the test pictures of this folder; see make.sh. Pixels are calculated in fractions, so that rounding
is beyond doubt; the files are written without any TIFF library."""
import struct
import sys
import zlib
from fractions import Fraction

SHORT, LONG, RATIONAL, UNDEFINED, DOUBLE, LONG8 = 3, 4, 5, 7, 12, 16
SIZE = {1: 1, 2: 1, SHORT: 2, LONG: 4, RATIONAL: 8, UNDEFINED: 1, DOUBLE: 8, LONG8: 8}
LETTER = {1: "B", 2: "B", SHORT: "H", LONG: "I", UNDEFINED: "B", DOUBLE: "d", LONG8: "Q"}
GREY, WHITE, RGB, PALETTE, INKS, YCC, LAB, ICCLAB, ITULAB = 1, 0, 2, 3, 5, 6, 8, 9, 10


def pam(name, rows):
    """rows: lists of (r, g, b, a)."""
    head = f"P7\nWIDTH {len(rows[0])}\nHEIGHT {len(rows)}\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n"
    with open(name + ".pam", "wb") as out:
        out.write(head.encode() + b"".join(bytes(p) for row in rows for p in row))


def near(value):
    """The nearest whole number, halves up."""
    return int(Fraction(value) + Fraction(1, 2))


def byte(part):
    """A part of 1 as a byte."""
    return near(min(max(Fraction(part), Fraction(0)), Fraction(1)) * 255)


def pack(samples, bits, order="<", letter=None):
    """One row."""
    if letter or bits in (8, 16, 32, 64):
        letter = letter or {8: "B", 16: "H", 32: "I", 64: "Q"}[bits]
        return b"".join(struct.pack(order + letter, s) for s in samples)
    if bits == 24:
        return b"".join(int(s).to_bytes(3, "little" if order == "<" else "big") for s in samples)
    pool = 0
    for sample in samples:
        pool = pool << bits | sample
    left = -len(samples) * bits % 8
    return (pool << left).to_bytes((len(samples) * bits + left) // 8, "big")


class File:
    def __init__(self, order="<"):
        self.order = order
        self.data = bytearray((b"II" if order == "<" else b"MM") + struct.pack(order + "HI", 42, 0))
        self.link = 4

    def put(self, data):
        self.data += b"\0" * (len(self.data) & 1)
        self.data += data
        return len(self.data) - len(data)

    def values(self, kind, values):
        return b"".join(struct.pack(self.order + LETTER[kind], v) for v in values)

    def directory(self, tags, linked=True):
        """tags: {number: (kind, values)}; gives the directory's place."""
        body = b""
        for number in sorted(tags):
            kind, values = tags[number]
            field = self.values(kind, values)
            if len(field) > 4:
                field = struct.pack(self.order + "I", self.put(field))
            body += struct.pack(self.order + "HHI", number, kind, len(values)) + field.ljust(4, b"\0")
        place = self.put(struct.pack(self.order + "H", len(tags)) + body + b"\0\0\0\0")
        if linked:
            self.data[self.link:self.link + 4] = struct.pack(self.order + "I", place)
            self.link = len(self.data) - 4
        return place

    def page(self, width, height, bits, samples, photometric, strips, tags=None, linked=True):
        """strips: their bytes, top first, plane after plane."""
        per = max(1, (1 if (tags or {}).get(284) == (SHORT, [2]) else 0) and samples)
        rows = -(-height * per // len(strips))
        places = [self.put(s) for s in strips]
        all_tags = {256: (SHORT, [width]), 257: (SHORT, [height]), 258: (SHORT, [bits] * samples),
                    259: (SHORT, [1]), 262: (SHORT, [photometric]), 273: (LONG, places),
                    277: (SHORT, [samples]), 278: (LONG, [rows]), 279: (LONG, [len(s) for s in strips])}
        all_tags.update(tags or {})
        return self.directory({k: v for k, v in all_tags.items() if v is not None}, linked)

    def save(self, name, cut=None):
        with open(name + ".tif", "wb") as out:
            out.write(self.data[:cut])


def single(name, *page, order="<", cut=None, **more):
    file = File(order)
    file.page(*page, **more)
    file.save(name, cut)


# ---- What the tools encode

def scene():
    return [[(x * 12, 250 - y * 18, 40 + x * 3 + y * 9, 255) for x in range(21)] for y in range(13)]


def sources():
    pam("scene", scene())
    dots = [[(x * x // 3 + y * y // 2 + x * y) % 5 < 2 for x in range(61)] for y in range(23)]
    pam("bilevel", [[(255 * d,) * 3 + (255,) for d in row] for row in dots])
    rows = scene()
    turned = {1: rows, 2: [r[::-1] for r in rows], 3: [r[::-1] for r in rows[::-1]], 4: rows[::-1],
              5: list(zip(*rows)), 6: [r[::-1] for r in zip(*rows)],
              7: [r[::-1] for r in list(zip(*rows))[::-1]], 8: list(zip(*rows))[::-1]}
    for orientation, picture in turned.items():
        pam(f"orientation-{orientation}", picture)
    pam("repeats", repeats())


def repeats():
    """One colour, whose strings grow long; noise, which fills the table of codes; and steps."""
    state, rows = 1, []
    for y in range(48):
        rows.append([])
        for x in range(64):
            state = (state * 1664525 + 1013904223) % 2**32
            noise = tuple(state >> shift & 255 for shift in (8, 16, 24))
            colour = (250, 10, 30) if y < 14 else noise if y < 40 else (x, y, x // 8)
            rows[-1].append(colour + (255,))
    return rows


# ---- Samples of every size

def grey(shades):
    return [[(s, s, s, 255) for s in shades]]


def sizes():
    parts = [Fraction(i, 19) for i in range(20)]
    for bits in (1, 2, 3, 4, 6, 8, 10, 12, 14, 16, 24, 32, 64):
        top = (1 << bits) - 1
        numbers = [near(p * top) for p in parts]
        for order in "<>" if bits >= 16 else "<":
            name = f"grey{bits}" + ("-mm" if order == ">" else "")
            single(name, 20, 1, bits, 1, GREY, [pack(numbers, bits, order)], order=order)
        pam(f"grey{bits}", grey([byte(Fraction(n, top)) for n in numbers]))
    # The 12-bit numbers that rounding twice would get wrong, and their neighbours.
    risky = [n for n in range(4096) if abs(Fraction(n, 4095) * 255 % 1 - Fraction(1, 2)) < Fraction(1, 100)]
    single("grey12-ties", len(risky), 1, 12, 1, GREY, [pack(risky, 12)])
    pam("grey12-ties", grey([byte(Fraction(n, 4095)) for n in risky]))
    wide = list(range(0, 65536, 37))
    single("grey16-all", len(wide), 1, 16, 1, GREY, [pack(wide, 16)])
    pam("grey16-all", grey([byte(Fraction(n, 65535)) for n in wide]))
    single("white1", 20, 1, 1, 1, WHITE, [pack([i & 1 for i in range(20)], 1)])
    pam("white1", grey([0 if i & 1 else 255 for i in range(20)]))
    single("white16", 20, 1, 16, 1, WHITE, [pack([near((1 - p) * 65535) for p in parts], 16)])
    pam("white16", grey([byte(1 - Fraction(near((1 - p) * 65535), 65535)) for p in parts]))
    signed = {339: (SHORT, [2])}
    single("signed8", 4, 1, 8, 1, GREY, [struct.pack("<4b", -128, -1, 0, 127)], signed)
    pam("signed8", grey([0, 127, 128, 255]))
    single("signed16", 4, 1, 16, 1, GREY, [struct.pack("<4h", -32768, -1, 1, 32767)], signed)
    pam("signed16", grey([0, byte(Fraction(32767, 65535)), byte(Fraction(32769, 65535)), 255]))


def floats():
    tag = {339: (SHORT, [3])}
    values = [0.0, 0.25, 0.5, 1.0, -3.0, 7.5, float("nan"), float("inf")]
    expected = [0, 64, 128, 255, 0, 255, 0, 255]
    for bits, letter in ((16, "e"), (32, "f"), (64, "d")):
        for order in "<>":
            single(f"float{bits}" + ("-mm" if order == ">" else ""), 8, 1, bits, 1, GREY,
                   [pack(values, bits, order, letter)], tag, order=order)
    # 24 bits: sign, seven of exponent with 63 for none, sixteen of fraction.
    single("float24", 8, 1, 24, 1, GREY, [pack([0, 61 << 16, 62 << 16, 63 << 16, 0xC08000, 0x41E000,
                                               0x7F0001, 0x7F0000], 24)], tag)
    pam("float", grey(expected))
    tiny = [2.0 ** -24, 2.0 ** -14]
    single("float16-tiny", 2, 1, 16, 1, GREY, [pack(tiny, 16, "<", "e")],
           {**tag, 341: (DOUBLE, [1.5]), 340: (DOUBLE, [0.0])})
    pam("float16-tiny", grey([0, 0]))
    single("float-range", 4, 1, 32, 1, GREY, [pack([0.0, 51.0, 128.0, 255.0], 32, "<", "f")],
           {**tag, 341: (DOUBLE, [255.0])})
    pam("float-range", grey([0, 51, 128, 255]))


# ---- Colours, alpha

def interleave(planes):
    return [s for pixel in zip(*planes) for s in pixel]


def several(name, bits, samples, photometric, pixels, tags=None, order="<", letter=None):
    """One row together and in planes."""
    together = pack([s for p in pixels for s in p], bits, order, letter)
    single(name, len(pixels), 1, bits, samples, photometric, [together], tags, order=order)
    planes = [pack(plane, bits, order, letter) for plane in zip(*pixels)]
    single(name + "-planes", len(pixels), 1, bits, samples, photometric, planes,
           {**(tags or {}), 284: (SHORT, [2])}, order=order)


def colours():
    for bits in (4, 8, 12, 16, 32):
        top = (1 << bits) - 1
        pixels = [(near(Fraction(i, 6) * top), near(Fraction(6 - i, 6) * top), near(Fraction(i % 3, 3) * top))
                  for i in range(7)]
        several(f"rgb{bits}", bits, 3, RGB, pixels, order=">")
        pam(f"rgb{bits}", [[tuple(byte(Fraction(s, top)) for s in p) + (255,) for p in pixels]])

    four = {320: (SHORT, [0, 65535, 257 * 17, 300] + [65535, 0, 257 * 99, 33000] + [0, 0, 257, 128])}
    table = [[byte(Fraction(v, 65535)) for v in four[320][1][c::4]] for c in range(4)]
    chosen = [0, 1, 2, 3, 3, 2, 1]
    pam("palette2", [[tuple(table[i]) + (255,) for i in chosen]])
    single("palette2", 7, 1, 2, 1, PALETTE, [pack(chosen, 2)], four)
    bytes_only = {320: (SHORT, [0, 255, 17, 1] + [255, 0, 99, 128] + [0, 0, 1, 200])}
    single("palette2-bytes", 7, 1, 2, 1, PALETTE, [pack(chosen, 2)], bytes_only)
    pam("palette2-bytes", [[tuple(bytes_only[320][1][i::4]) + (255,) for i in chosen]])
    upper = [255, 128, 1] + [254, 0, 99] + [3, 77, 200]
    single("palette2-upper-bytes", 3, 1, 2, 1, PALETTE, [pack([0, 1, 2], 2)],
           {320: (SHORT, [upper[i] << 8 if i < 9 else 0 for c in range(3) for i in (*range(3 * c, 3 * c + 3), 9)])})
    pam("palette2-upper-bytes", [[tuple(upper[i::3]) + (255,) for i in range(3)]])
    ramp = {320: (SHORT, [i * 97 % 65536 for i in range(1024)] * 3)}
    picked = [0, 1, 999, 700, 1023]
    single("palette10", 5, 1, 10, 1, PALETTE, [pack(picked, 10)], ramp)
    pam("palette10", grey([byte(Fraction(i * 97 % 65536, 65535)) for i in picked]))
    several("palette-alpha", 4, 2, PALETTE, [(1, 15), (2, 0), (0, 5)],
            {320: (SHORT, [i * 4369 for i in range(16)] * 3), 338: (SHORT, [2])})
    pam("palette-alpha", [[(17, 17, 17, 255), (34, 34, 34, 0), (0, 0, 0, 85)]])


def alphas():
    straight = [(200, 100, 50, 255), (200, 100, 50, 0), (200, 100, 50, 51), (255, 0, 128, 170)]
    for bits, factor in ((8, 1), (16, 257)):
        top = 255 * factor
        scaled = [tuple(s * factor for s in p) for p in straight]
        several(f"alpha{bits}", bits, 4, RGB, scaled, {338: (SHORT, [2])})
        several(f"alpha{bits}-missing", bits, 4, RGB, scaled)
        several(f"alpha{bits}-unspecified", bits, 4, RGB, scaled, {338: (SHORT, [0])})
        multiplied = [tuple(near(Fraction(c * p[3], top)) for c in p[:3]) + (p[3],) for p in scaled]
        several(f"alpha{bits}-associated", bits, 4, RGB, multiplied, {338: (SHORT, [1])})
        freed = [tuple(byte(Fraction(c, p[3])) for c in p[:3]) + (p[3] // factor,) if p[3] else (0, 0, 0, 0)
                 for p in multiplied]
        pam(f"alpha{bits}-associated", [freed])
    pam("alpha", [straight])
    several("rgb-untold", 8, 3, RGB, [p[:3] for p in straight], {262: None})
    several("alpha-untold", 8, 4, RGB, straight, {262: None})
    pam("alpha-unspecified", [[p[:3] + (255,) for p in straight]])
    several("alpha-second", 8, 5, RGB, [p[:3] + (9,) + p[3:] for p in straight], {338: (SHORT, [0, 2])})
    several("grey-alpha", 8, 2, GREY, [(10, 255), (77, 0), (200, 33)], {338: (SHORT, [2])})
    pam("grey-alpha", [[(10, 10, 10, 255), (77, 77, 77, 0), (200, 200, 200, 33)]])
    several("white-alpha", 8, 2, WHITE, [(10, 255), (77, 9)], {338: (SHORT, [2])})
    pam("white-alpha", [[(245, 245, 245, 255), (178, 178, 178, 9)]])
    several("float-alpha", 32, 4, RGB, [(0.25, 0.1, 0.5, 0.5), (1.0, 0.5, 0.0, 1.0)],
            {339: (SHORT, [3]), 338: (SHORT, [1])}, letter="f")
    pam("float-alpha", [[(128, 51, 255, 128), (255, 128, 0, 255)]])


def inks():
    pixels = [(0, 0, 0, 0), (255, 0, 0, 0), (0, 255, 0, 0), (0, 0, 255, 0), (0, 0, 0, 255), (51, 102, 0, 128)]
    light = [[tuple(byte(Fraction((255 - c) * (255 - p[3]), 255 * 255)) for c in p[:3]) + (255,)
              for p in pixels]]
    pam("cmyk", light)
    several("cmyk8", 8, 4, INKS, pixels)
    several("cmyk16", 16, 4, INKS, [tuple(s * 257 for s in p) for p in pixels], order=">")
    several("cmyk-alpha", 8, 5, INKS, [p + (7,) for p in pixels], {338: (SHORT, [2])})
    pam("cmyk-alpha", [[p[:3] + (7,) for p in light[0]]])
    profile = {34675: (UNDEFINED, list(open("../colour/inks.icc", "rb").read()))}
    single("icc-cmyk8", 6, 1, 8, 4, INKS, [pack([s for p in pixels for s in p], 8)], profile)
    single("icc-cmyk16", 6, 1, 16, 4, INKS, [pack([s * 257 for p in pixels for s in p], 16)], profile)
    rotated = {34675: (UNDEFINED, list(open("../colour/rotated.icc", "rb").read()))}
    triples = [(255, 0, 0), (0, 255, 0), (0, 0, 255), (10, 90, 200), (128, 128, 128)]
    single("icc-rgb8", 5, 1, 8, 3, RGB, [pack([s for p in triples for s in p], 8)], rotated)
    single("icc-rgb16", 5, 1, 16, 3, RGB, [pack([s * 257 for p in triples for s in p], 16)], rotated)
    single("icc-palette", 5, 1, 4, 1, PALETTE, [pack([0, 1, 2, 3, 4], 4)],
           {**rotated, 320: (SHORT, [triples[i][c] * 257 if i < 5 else 0 for c in range(3) for i in range(16)])})
    broken = {34675: (UNDEFINED, [1, 2, 3])}
    single("icc-broken", 5, 1, 8, 3, RGB, [pack([s for p in triples for s in p], 8)], broken)
    pam("icc-broken", [[p + (255,) for p in triples]])


def lab_to_srgb(lightness, a, b):
    fy = (lightness + 16) / 116
    xyz = []
    for f, white in ((fy + a / 500, 0.96422), (fy, 1.0), (fy - b / 200, 0.82521)):
        xyz.append(white * (f ** 3 if f > 6 / 29 else 3 * (6 / 29) ** 2 * (f - 4 / 29)))
    result = []
    for row in ((3.1338561, -1.6168667, -0.4906146), (-0.9787684, 1.9161415, 0.0334540),
                (0.0719453, -0.2289914, 1.4052427)):
        light = min(max(sum(m * v for m, v in zip(row, xyz)), 0), 1)
        result.append(round(255 * (12.92 * light if light <= 0.0031308 else 1.055 * light ** (1 / 2.4) - 0.055)))
    return tuple(result) + (255,)


def lab():
    colours = [(100, 0, 0), (0, 0, 0), (50, 0, 0), (60, 40, 30), (40, -30, 20), (70, -10, -40), (5, 3, -4)]
    pam("lab", [[lab_to_srgb(*c) for c in colours]])
    several("cielab8", 8, 3, LAB, [(near(l * Fraction(255, 100)), a & 255, b & 255) for l, a, b in colours])
    several("cielab16", 16, 3, LAB, [(near(l * Fraction(65535, 100)), a * 256 & 65535, b * 256 & 65535)
                                     for l, a, b in colours])
    several("icclab8", 8, 3, ICCLAB, [(near(l * Fraction(255, 100)), a + 128, b + 128) for l, a, b in colours])
    several("icclab16", 16, 3, ICCLAB, [(near(l * Fraction(65280, 100)), a * 256 + 32768, b * 256 + 32768)
                                        for l, a, b in colours])
    several("itulab8", 8, 3, ITULAB, [(near(l * Fraction(255, 100)), near(a * Fraction(255, 170) + 128),
                                       near(b * Fraction(255, 200) + 96)) for l, a, b in colours])


def ycc_to_rgb(y, cb, cr):
    return tuple(max(0, min(255, round(v))) for v in
                 (y + 1.402 * (cr - 128), y - 0.344136 * (cb - 128) - 0.714136 * (cr - 128),
                  y + 1.772 * (cb - 128))) + (255,)


def ycc():
    blocks = [((50, 60, 70, 80), 100, 150), ((200, 190, 180, 170), 128, 128), ((90, 90, 90, 90), 160, 90)]
    data = b"".join(bytes(y) + bytes([cb, cr]) for y, cb, cr in blocks)
    single("ycbcr-22", 6, 2, 8, 3, YCC, [data], {530: (SHORT, [2, 2])})
    pam("ycbcr-22", [[ycc_to_rgb(y[2 * row + i], cb, cr) for y, cb, cr in blocks for i in range(2)]
                     for row in range(2)])
    pixels = [(50, 100, 150), (200, 128, 128), (90, 160, 90)]
    several("ycbcr-11", 8, 3, YCC, pixels, {530: (SHORT, [1, 1])})
    pam("ycbcr-11", [[ycc_to_rgb(*p) for p in pixels]])
    jpeg = open("scene.jpg", "rb").read()
    file = File()
    place = file.put(jpeg)
    file.directory({256: (SHORT, [21]), 257: (SHORT, [13]), 258: (SHORT, [8] * 3), 259: (SHORT, [6]),
                    262: (SHORT, [YCC]), 273: (LONG, [place]), 277: (SHORT, [3]), 278: (SHORT, [13]),
                    279: (LONG, [len(jpeg)]), 512: (SHORT, [1]), 513: (LONG, [place]),
                    514: (LONG, [len(jpeg)]), 530: (SHORT, [1, 1])})
    file.save("old-jpeg")


# ---- Codings that no tool writes

def rare():
    # Runs of T.4: 8 white, 8 black; 16 white; none white, 16 black. Each row begins at a byte.
    rows = ("10011" "000101", "101010", "00110101" "0000010111")
    black = [[i >= 8 for i in range(16)], [False] * 16, [True] * 16]
    bits = "".join(row + "0" * (-len(row) % 8) for row in rows)
    data = int(bits, 2).to_bytes(len(bits) // 8, "big")
    single("rle", 16, 3, 1, 1, WHITE, [data], {259: (SHORT, [2])})
    pam("rle", [[(0 if b else 255,) * 3 + (255,) for b in row] for row in black])
    shades = [0, 1, 2, 3, 3, 0, 2, 1]
    single("next", 8, 1, 2, 1, GREY, [b"\0" + pack(shades, 2)], {259: (SHORT, [32766])})
    pam("next", grey([85 * s for s in shades]))
    single("thunderscan", 8, 1, 4, 1, GREY, [bytes(0xC0 | 5 * s for s in shades)], {259: (SHORT, [32809])})
    # Logarithms of 1, 1/4, 1/16 and none, high bytes before low ones; shown by the root.
    logs = [(64 + e) * 256 for e in (0, -2, -4)] + [0]
    coded = bytes([4] + [v >> 8 for v in logs] + [4] + [v & 255 for v in logs])
    single("logarithms", 4, 1, 16, 1, 32844, [coded], {259: (SHORT, [34676]), 339: (SHORT, [2])})
    pam("logarithms", grey([255, 128, 64, 0]))


# ---- Pages

def pages():
    def small(file, shade, kind, linked=True, **tags):
        extra = {254: (LONG, [kind])} if kind is not None else {}
        return file.page(1, 1, 8, 1, GREY, [bytes([shade])], {**extra, **{int(k[1:]): v for k, v in tags.items()}},
                         linked)

    for name, kinds in (("first-page", [2, 0]), ("after-thumbnail", [1, 0]), ("after-mask", [4, 5, 2]),
                        ("only-thumbnail", [1])):
        file = File()
        for i, kind in enumerate(kinds):
            full = kind in (0, 2)
            small(file, 77 if full and all(k not in (0, 2) for k in kinds[:i]) or len(kinds) == 1 else 200, kind)
        file.save(name)
    file = File()
    small(file, 200, None, t255=(SHORT, [2]))
    small(file, 77, None, t255=(SHORT, [1]))
    file.save("after-old-thumbnail")
    file = File(">")
    child = small(file, 77, 0, False)
    small(file, 200, 1, t330=(LONG, [child]))
    file.save("in-child")
    file = File()
    child = file.page(1, 1, 16, 1, 32803, [b"\1\2"], {254: (LONG, [0])}, False)
    small(file, 77, 1, t330=(LONG, [child]))
    file.save("sensor-child")
    file = File()
    at = small(file, 77, 1)
    file.data[file.link:file.link + 4] = struct.pack("<I", at)
    file.save("loop")
    file = File()
    small(file, 77, 0)
    file.data[file.link:file.link + 4] = struct.pack("<I", 0xFFFFFF00)
    file.save("chain-into-nothing")
    pam("page", grey([77]))


# ---- Damage

def tags_of(name):
    """Where the 4-byte value of each tag of the first directory lies."""
    data = bytearray(open(name + ".tif", "rb").read())
    order = "<" if data[:2] == b"II" else ">"
    at, = struct.unpack_from(order + "I", data, 4)
    count, = struct.unpack_from(order + "H", data, at)
    return data, order, {struct.unpack_from(order + "H", data, at + 2 + 12 * i)[0]: at + 10 + 12 * i
                         for i in range(count)}


def damaged(name, source, change):
    data, order, places = tags_of(source)
    data = change(data, order, places) or data
    with open(name + ".tif", "wb") as out:
        out.write(data)


def shorten_last_strip(by):
    def change(data, order, places):
        count, = struct.unpack_from(order + "I", data, places[279] - 4)
        kind, = struct.unpack_from(order + "H", data, places[279] - 6)
        size = SIZE[kind]
        at = places[279] if count * size <= 4 else struct.unpack_from(order + "I", data, places[279])[0]
        at += (count - 1) * size
        old, = struct.unpack_from(order + LETTER[kind], data, at)
        struct.pack_into(order + LETTER[kind], data, at, max(1, old - by if by > 0 else old // 2))
    return change


def damage():
    single("bilevel-jbig", 61, 23, 1, 1, WHITE, [open("bilevel.jbg", "rb").read()], {259: (SHORT, [34661]), 266: (SHORT, [2])})
    halve = shorten_last_strip(0)
    for source in ("bilevel-g4", "bilevel-g3", "bilevel-g3-2d", "bilevel-jbig", "lzw-predictor",
                   "packbits-planes", "zstd", "lzma", "jpeg-rgb", "webp", "plain", "lerc"):
        damaged("bad-cut-" + source, source, halve)
    # A picture in a strip that has a row less than the strip.
    def lower(data, order, places):
        at = data.index(b"\xff\xc0") + 5
        struct.pack_into(">H", data, at, struct.unpack_from(">H", data, at)[0] - 1)
    damaged("bad-jpeg-low-strip", "jpeg-rgb", lower)
    # A strip that says of itself that it is 4 thousand million rows high.
    def endless(data, order, places):
        start, = struct.unpack_from(order + "I", data, places[273])
        data[start + 8:start + 12] = b"\xFF" * 4
    damaged("bad-jbig-rows", "bilevel-jbig", endless)
    good = bytes(range(60))
    packed = zlib.compress(good)
    deflate = {259: (SHORT, [8])}
    single("deflate", 20, 1, 8, 3, RGB, [packed], deflate)
    pam("deflate", [[tuple(good[3 * i:3 * i + 3]) + (255,) for i in range(20)]])
    single("bad-checksum", 20, 1, 8, 3, RGB, [packed[:-1] + bytes([packed[-1] ^ 1])], deflate)
    single("bad-fewer-bytes", 20, 1, 8, 3, RGB, [zlib.compress(good[:-1])], deflate)
    single("bad-cut-file", 1, 40, 8, 3, RGB, [bytes(120)])
    data, order, places = tags_of("bad-cut-file")
    file = File()
    file.directory({256: (SHORT, [1]), 257: (SHORT, [40]), 258: (SHORT, [8]), 259: (SHORT, [1]),
                    262: (SHORT, [1]), 273: (LONG, [150]), 277: (SHORT, [1]), 278: (SHORT, [40]),
                    279: (LONG, [40])})
    file.save("bad-cut-file")
    single("bad-no-strips", 4, 4, 8, 1, GREY, [bytes(16)], {273: None, 279: None})
    single("bad-sparse", 4, 4, 8, 1, GREY, [bytes(16)], {273: (LONG, [0]), 279: (LONG, [0])})
    single("bad-palette", 4, 1, 4, 1, PALETTE, [bytes(2)])
    single("bad-compression", 4, 1, 8, 1, GREY, [bytes(4)], {259: (SHORT, [34712])})
    single("bad-colours", 4, 1, 8, 1, 32803, [bytes(4)])
    single("bad-complex", 4, 1, 64, 1, GREY, [bytes(32)], {339: (SHORT, [6])})
    single("bad-sizes", 4, 1, 8, 3, RGB, [bytes(12)], {258: (SHORT, [5, 6, 5])})
    single("bad-samples", 4, 1, 8, 1, RGB, [bytes(12)])
    single("bad-many-inks", 1, 1, 8, 6, INKS, [bytes(6)], {332: (SHORT, [2])})
    single("bad-no-height", 4, 1, 8, 1, GREY, [bytes(4)], {257: None})
    single("bad-wide", 4, 1, 8, 1, GREY, [bytes(4)], {256: (LONG, [32768])})
    single("bad-tile", 4, 1, 8, 1, GREY, [bytes(4)],
           {259: (SHORT, [8]), 322: (LONG, [1 << 28]), 323: (LONG, [1 << 28]), 324: (LONG, [8]), 325: (LONG, [4]),
            273: None, 278: None, 279: None})
    single("bad-huge", 4, 1, 8, 1, GREY, [bytes(4)], {256: (SHORT, [32767]), 257: (SHORT, [32767])})
    single("bad-flood", 1, 1, 8, 1, GREY, [bytes(100)], {60000 + i: (UNDEFINED, [0] * 5) for i in range(900)})
    data, order, places = tags_of("bad-flood")
    for tag, place in places.items():
        if tag >= 60000:
            struct.pack_into("<II", data, place - 4, 9000, 8)
    open("bad-flood.tif", "wb").write(data)
    open("bad-header.tif", "wb").write(b"II*\0\xF0\xFF\0\0")
    open("bad-directory.tif", "wb").write(b"MM\0*\0\0\0\x08\0\x09\x01\0\0\x03")


def odd():
    for make in (sizes, floats, colours, alphas, inks, lab, ycc, rare, pages, damage):
        make()


{"sources": sources, "odd": odd}[sys.argv[1]]()
