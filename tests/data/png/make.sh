#!/bin/sh
# Makes the PNG files beside this script, chunk by chunk after the PNG specification (3rd ed.), with the
# compressor of Python's own library; NAME.rgba holds the pixels that a reader has to find, 8-bit RGBA.
# The pictures in bad/ have one fault each.
cd "$(dirname "$0")" && mkdir -p good bad && exec python3 - <<'PYTHON'
import random, struct, zlib

GREY, RGB, PALETTE, GREY_ALPHA, RGBA = 0, 2, 3, 4, 6
CHANNELS = {GREY: 1, RGB: 3, PALETTE: 1, GREY_ALPHA: 2, RGBA: 4}
SIGNATURE = b'\x89PNG\r\n\x1a\n'

def chunk(kind, data=b'', crc=None):
    crc = zlib.crc32(kind + data) if crc is None else crc
    return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', crc)

def header(w, h, depth, colour, interlace=0, compression=0, filtering=0):
    return chunk(b'IHDR', struct.pack('>IIBBBBB', w, h, depth, colour, compression, filtering, interlace))

def paeth(a, b, c):
    p = a + b - c
    return min((abs(p - a), 0, a), (abs(p - b), 1, b), (abs(p - c), 2, c))[2]

def pack(row, depth):                      # samples of a row to bytes
    if depth == 16: return b''.join(struct.pack('>H', s) for s in row)
    bits = ''.join(format(s, '0%db' % depth) for s in row)
    bits += '0' * (-len(bits) % 8)
    return bytes(int(bits[i:i + 8], 2) for i in range(0, len(bits), 8))

def rows(samples, depth, colour, filters):  # samples: rows of flat lists; the filtered rows
    bpp = max(1, depth * CHANNELS[colour] // 8)
    out, above = b'', None
    for y, samples_of_row in enumerate(samples):
        row = pack(samples_of_row, depth)
        above = above or bytes(len(row))
        f = filters[y % len(filters)]
        left = bytes(bpp) + row
        upper_left = bytes(bpp) + above
        predicted = {0: lambda i: 0, 1: lambda i: left[i], 2: lambda i: above[i],
                     3: lambda i: (left[i] + above[i]) // 2,
                     4: lambda i: paeth(left[i], above[i], upper_left[i])}.get(f, lambda i: 0)
        out += bytes([f]) + bytes((row[i] - predicted(i)) & 255 for i in range(len(row)))
        above = row
    return out

ADAM7 = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]

def stored(samples, w, h, depth, colour, interlace=0, filters=(0, 1, 2, 3, 4)):
    if not interlace: return rows(samples, depth, colour, filters)
    n, out = CHANNELS[colour], b''
    for x0, y0, dx, dy in ADAM7:
        if x0 < w:
            out += rows([sum((samples[y][x * n:x * n + n] for x in range(x0, w, dx)), [])
                         for y in range(y0, h, dy)], depth, colour, filters)
    return out

def rounded(s, depth): return (s * 255 + (2 ** depth - 1) // 2) // (2 ** depth - 1)

def seen(samples, depth, colour, palette=(), key=None):  # what the samples mean, without colour spaces
    n, out = CHANNELS[colour], bytearray()
    for row in samples:
        for i in range(0, len(row), n):
            p = row[i:i + n]
            if colour == PALETTE:
                out += bytes(palette[p[0]] if p[0] < len(palette) else (0, 0, 0, 255))
                continue
            v = [rounded(s, depth) for s in p]
            rgb = v[:3] if n >= 3 else v[:1] * 3
            alpha = v[-1] if n in (2, 4) else 0 if key == p else 255
            out += bytes(rgb + [alpha])
    return bytes(out)

def noise(w, h, depth, colour, top=None):
    draw = random.Random('%d %d %d %d' % (w, h, depth, colour))
    top = 2 ** depth if top is None else top
    return [[draw.randrange(top) for _ in range(w * CHANNELS[colour])] for _ in range(h)]

def good(name, parts, rgba):
    open('good/%s.png' % name, 'wb').write(SIGNATURE + b''.join(parts))
    open('good/%s.rgba' % name, 'wb').write(rgba)

def bad(name, parts): open('bad/%s.png' % name, 'wb').write(b''.join(parts))

END = chunk(b'IEND')
def data(raw): return chunk(b'IDAT', zlib.compress(raw, 9))

# Every colour type and depth, plain and interlaced, all filters.
for colour, depths in ((GREY, (1, 2, 4, 8, 16)), (RGB, (8, 16)), (PALETTE, (1, 2, 4, 8)), (GREY_ALPHA, (8, 16)),
                       (RGBA, (8, 16))):
    for depth in depths:
        for interlace in (0, 1):
            w, h = 13, 11
            draw = random.Random(depth)
            size = min(2 ** depth, 200)
            palette = [tuple(draw.randrange(256) for _ in range(3)) + (255,) for _ in range(size)]
            samples = noise(w, h, depth, colour, size if colour == PALETTE else None)
            parts = [header(w, h, depth, colour, interlace)]
            if colour == PALETTE: parts.append(chunk(b'PLTE', b''.join(bytes(p[:3]) for p in palette)))
            parts += [data(stored(samples, w, h, depth, colour, interlace)), END]
            name = '%s%d%s' % ({0: 'grey', 2: 'rgb', 3: 'palette', 4: 'greyalpha', 6: 'rgba'}[colour], depth,
                               'i' if interlace else '')
            good(name, parts, seen(samples, depth, colour, palette))

# Sizes at which passes, bands of rows and the ends of rows run empty.
for w, h, interlace in ((1, 1, 1), (2, 9, 0), (3, 9, 0), (1, 9, 0), (5, 3, 1), (70, 70, 0)):
    for colour in (RGB, RGBA):
        samples = noise(w, h, 8, colour)
        filters = (4, 3, 1, 2, 4, 0, 4)
        good('size%dx%d%s%d' % (w, h, 'i' if interlace else '', colour),
             [header(w, h, 8, colour, interlace), data(stored(samples, w, h, 8, colour, interlace, filters)), END],
             seen(samples, 8, colour))

# Indices of which a row takes fewer bytes than stored, or as many.
for depth in (1, 4, 8):
    for w, h in ((1, 9), (2, 1)):
        samples = noise(w, h, depth, GREY)
        good('narrow-grey%d-%dx%d' % (depth, w, h),
             [header(w, h, depth, GREY), data(stored(samples, w, h, depth, GREY, 0, (4, 3, 1, 2, 4, 0, 4))), END],
             seen(samples, depth, GREY))

# A transparent colour, and a palette whose first entries have alphas.
for colour, depth in ((GREY, 1), (GREY, 8), (GREY, 16), (RGB, 8), (RGB, 16)):
    samples = noise(9, 7, depth, colour)
    key = samples[3][:CHANNELS[colour]]
    samples[5][-len(key):] = key
    if depth == 16: samples[0][:len(key)] = [s ^ 1 for s in key]  # as good as the key in 8 bits
    # Bits above the depth say nothing.
    value = b''.join(struct.pack('>H', s | (0x8000 if depth < 16 else 0)) for s in key)
    good('key-%s%d' % ('grey' if colour == GREY else 'rgb', depth),
         [header(9, 7, depth, colour), chunk(b'tRNS', value), data(stored(samples, 9, 7, depth, colour)), END],
         seen(samples, depth, colour, key=key))
palette = [(10, 20, 30, 0), (40, 50, 60, 128), (70, 80, 90, 255), (200, 100, 0, 255)]
PLTE = chunk(b'PLTE', b''.join(bytes(p[:3]) for p in palette))
indices = noise(9, 7, 2, PALETTE)
PIXELS = data(stored(indices, 9, 7, 2, PALETTE))
good('palette-alphas', [header(9, 7, 2, PALETTE), PLTE, chunk(b'tRNS', bytes([0, 128])), PIXELS, END],
     seen(indices, 2, PALETTE, palette))
opaque = [p[:3] + (255,) for p in palette]
good('palette-short', [header(9, 7, 2, PALETTE), chunk(b'PLTE', bytes(range(1, 10))), PIXELS, END],
     seen(indices, 2, PALETTE, [(1, 2, 3, 255), (4, 5, 6, 255), (7, 8, 9, 255)]))

# One picture under many circumstances.
W, H = 7, 6
SAMPLES = noise(W, H, 8, RGB)
RAW = stored(SAMPLES, W, H, 8, RGB)
STREAM = zlib.compress(RAW, 9)
RGBA_ROWS = seen(SAMPLES, 8, RGB)
HEAD, DATA = header(W, H, 8, RGB), chunk(b'IDAT', STREAM)

def same(name, *parts): good(name, parts, RGBA_ROWS)
same('data-in-bytes', HEAD, *[chunk(b'IDAT', STREAM[i:i + 1]) for i in range(len(STREAM))], END)
same('data-empty-chunks', HEAD, chunk(b'IDAT'), DATA, chunk(b'IDAT'), END)
same('no-end', HEAD, DATA)
same('garbage-behind', HEAD, DATA, END, b'garbage' * 5)
same('garbage-for-end', HEAD, DATA, b'\0\0\0\0\0\0\0\0garbage')
same('cut-text-behind', HEAD, DATA, chunk(b'tEXt', b'Title\0None')[:-6])
same('surplus-rows', HEAD, chunk(b'IDAT', zlib.compress(RAW + b'x' * 1000)), END)
same('surplus-behind-stream', HEAD, chunk(b'IDAT', STREAM + b'surplus'), END)
same('broken-text', HEAD, chunk(b'tEXt', b'Title\0None', 1), DATA, END)
same('broken-gamma', HEAD, chunk(b'gAMA', struct.pack('>I', 100000), 1), DATA, END)
same('broken-profile', HEAD, chunk(b'iCCP', b'x\0\0not a stream'), DATA, END)
same('bomb-profile', HEAD, chunk(b'iCCP', b'x\0\0' + zlib.compress(bytes(9 << 20), 9)), DATA, END)
same('unknown-ancillary', HEAD, chunk(b'abCd', b'1234'), DATA, END)
same('palette-suggested', HEAD, PLTE, DATA, END)
same('stored-block', HEAD, chunk(b'IDAT', zlib.compress(RAW, 0)), END)
same('gamma-of-srgb', HEAD, chunk(b'gAMA', struct.pack('>I', 45455)), DATA, END)
same('gamma-zero', HEAD, chunk(b'gAMA', bytes(4)), DATA, END)
same('srgb-before-gamma', HEAD, chunk(b'gAMA', struct.pack('>I', 100000)), chunk(b'sRGB', b'\0'), DATA, END)
same('code-points-before-gamma', HEAD, chunk(b'cICP', bytes([1, 13, 0, 1])),
     chunk(b'gAMA', struct.pack('>I', 100000)), DATA, END)
same('code-points-not-for-screens', HEAD, chunk(b'cICP', bytes([9, 16, 0, 1])), chunk(b'sRGB', b'\0'), DATA, END)
same('animated', HEAD, chunk(b'acTL', struct.pack('>II', 2, 0)),
     chunk(b'fcTL', struct.pack('>IIIIIHHBB', 0, W, H, 0, 0, 1, 1, 0, 0)), DATA,
     chunk(b'fcTL', struct.pack('>IIIIIHHBB', 1, W, H, 0, 0, 1, 1, 0, 0)),
     chunk(b'fdAT', struct.pack('>I', 2) + zlib.compress(bytes(len(RAW)))), END)
same('exif-damaged', HEAD, chunk(b'eXIf', b'MM\0*\xff\xff'), DATA, END)

# Turned upright: stored row 0 is the right side (6) or everything stands on its head (3).
def tiff(orientation): return b'MM\0*\0\0\0\x08' + struct.pack('>HHHIHHI', 1, 0x112, 3, 1, orientation, 0, 0)
def pixel(x, y): return RGBA_ROWS[4 * (y * W + x):][:4]
turned = b''.join(pixel(y, H - 1 - x) for y in range(W) for x in range(H))
good('turned-6', [HEAD, chunk(b'eXIf', tiff(6)), DATA, END], turned)
good('turned-6-late', [HEAD, DATA, chunk(b'eXIf', b'Exif\0\0' + tiff(6)), END], turned)
good('turned-3', [HEAD, chunk(b'eXIf', tiff(3)), DATA, END],
     b''.join(pixel(W - 1 - x, H - 1 - y) for y in range(H) for x in range(W)))

# Colour spaces, from their formulas.
def decode(v): return v / 12.92 if v <= 0.04045 else ((v + 0.055) / 1.055) ** 2.4
def encode(v):
    v = min(max(v, 0), 1)
    return 12.92 * v if v <= 0.0031308 else 1.055 * v ** (1 / 2.4) - 0.055
def in_srgb(rgba, linear, mix=lambda *c: c):
    out = bytearray()
    for i in range(0, len(rgba), 4):
        out += bytes(round(255 * encode(v)) for v in mix(*(linear(c / 255) for c in rgba[i:i + 3]))) + rgba[i + 3:i + 4]
    return bytes(out)
def from_p3(r, g, b):  # the usual matrix from Display P3 to sRGB, linear
    return (1.2249402 * r - 0.2249404 * g, -0.0420569 * r + 1.0420571 * g,
            -0.0196376 * r - 0.0786361 * g + 1.0982735 * b)
def from_2020(r, g, b):
    return (1.6604910 * r - 0.5876411 * g - 0.0728499 * b, -0.1245505 * r + 1.1328999 * g - 0.0083494 * b,
            -0.0181508 * r - 0.1005789 * g + 1.1187297 * b)
GAMMA1 = chunk(b'gAMA', struct.pack('>I', 100000))
good('gamma-1', [HEAD, GAMMA1, DATA, END], in_srgb(RGBA_ROWS, lambda v: v))
good('gamma-behind-no-profile',
     [HEAD, GAMMA1, chunk(b'iCCP', b'x\0\0' + zlib.compress(b'nonsense' * 40)), DATA, END],
     in_srgb(RGBA_ROWS, lambda v: v))
good('gamma-0.55', [HEAD, chunk(b'gAMA', struct.pack('>I', 55000)), DATA, END],
     in_srgb(RGBA_ROWS, lambda v: v ** (1 / 0.55)))
good('code-points-p3', [HEAD, chunk(b'cICP', bytes([12, 13, 0, 1])), GAMMA1, DATA, END],
     in_srgb(RGBA_ROWS, decode, from_p3))
good('code-points-2020-linear', [HEAD, chunk(b'cICP', bytes([9, 8, 0, 1])), DATA, END],
     in_srgb(RGBA_ROWS, lambda v: v, from_2020))
def big(samples): return [[s * 257 for s in row] for row in samples]
good('gamma-1-16', [header(W, H, 16, RGB), GAMMA1, data(stored(big(SAMPLES), W, H, 16, RGB)), END],
     in_srgb(RGBA_ROWS, lambda v: v))
for name, colour, depth in (('grey2', GREY, 2), ('greyalpha8', GREY_ALPHA, 8), ('grey16', GREY, 16)):
    samples = noise(W, H, depth, colour)
    if depth == 16: samples = [[s // 257 * 257 for s in row] for row in samples]
    good('gamma-1-' + name, [header(W, H, depth, colour), GAMMA1, data(stored(samples, W, H, depth, colour)), END],
         in_srgb(seen(samples, depth, colour), lambda v: v))
good('gamma-1-palette', [header(9, 7, 2, PALETTE), GAMMA1, PLTE, chunk(b'tRNS', bytes([0, 128])), PIXELS, END],
     in_srgb(seen(indices, 2, PALETTE, palette), lambda v: v))
key = SAMPLES[2][:3]
good('gamma-1-key', [HEAD, GAMMA1, chunk(b'tRNS', struct.pack('>HHH', *key)), DATA, END],
     in_srgb(seen(SAMPLES, 8, RGB, key=key), lambda v: v))
rotated = open('../colour/rotated.icc', 'rb').read()
good('profile', [HEAD, chunk(b'iCCP', b'x\0\0' + zlib.compress(rotated)), chunk(b'sRGB', b'\0'), DATA, END],
     b''.join(bytes((c[2], c[0], c[1], c[3])) for c in (RGBA_ROWS[i:i + 4] for i in range(0, len(RGBA_ROWS), 4))))
grey_linear = open('../colour/grey-linear.icc', 'rb').read()
for depth in (8, 16):
    samples = [[max(s, 8) for s in row] for row in noise(W, H, 8, GREY_ALPHA)]
    good('profile-grey%d' % depth, [header(W, H, depth, GREY_ALPHA), chunk(b'iCCP', b'x\0\0' + zlib.compress(grey_linear)),
         data(stored(big(samples) if depth == 16 else samples, W, H, depth, GREY_ALPHA)), END],
         in_srgb(seen(samples, 8, GREY_ALPHA), lambda v: v))

# One fault each.
def fault(name, *parts): bad(name, (SIGNATURE,) + parts)
fault('cut-signature')
fault('cut-header', HEAD[:20])
fault('cut-data', HEAD, DATA[:-30])
fault('cut-checksum', HEAD, DATA[:-1])
fault('cut-stream', HEAD, chunk(b'IDAT', STREAM[:-20]), END)
fault('cut-between-data', HEAD, chunk(b'IDAT', STREAM[:-20]))
fault('cut-adler', HEAD, chunk(b'IDAT', STREAM[:-2]), END)
fault('wrong-adler', HEAD, chunk(b'IDAT', STREAM[:-1] + bytes([STREAM[-1] ^ 1])), END)
fault('wrong-header-checksum', HEAD[:-1] + bytes([HEAD[-1] ^ 1]), DATA, END)
fault('wrong-data-checksum', HEAD, chunk(b'IDAT', STREAM, 1), END)
fault('wrong-palette-checksum', header(9, 7, 2, PALETTE), chunk(b'PLTE', bytes(12), 1), PIXELS, END)
fault('wrong-end-checksum', HEAD, DATA, chunk(b'IEND', b'', 1))
fault('no-palette', header(9, 7, 2, PALETTE), PIXELS, END)
fault('palette-of-4-bytes', header(9, 7, 2, PALETTE), chunk(b'PLTE', bytes(4)), PIXELS, END)
fault('palette-of-257', header(9, 7, 2, PALETTE), chunk(b'PLTE', bytes(771)), PIXELS, END)
fault('filter-5', HEAD, data(stored(SAMPLES, W, H, 8, RGB, 0, (0, 0, 5, 0))), END)
fault('filter-5-at-end', HEAD, data(stored(SAMPLES, W, H, 8, RGB, 0, (0, 0, 0, 0, 0, 5))), END)
fault('filter-5-interlaced', header(W, H, 8, RGB, 1), data(stored(SAMPLES, W, H, 8, RGB, 1, (5,))), END)
fault('row-missing', HEAD, data(RAW[:-1 - 3 * W]), END)
fault('no-data', HEAD, END)
fault('data-empty', HEAD, chunk(b'IDAT'), END)
fault('data-not-zlib', HEAD, chunk(b'IDAT', b'\1\2\3\4\5\6\7\x08'), END)
fault('depth-3', header(W, H, 3, GREY), DATA, END)
fault('depth-4-rgb', header(W, H, 4, RGB), DATA, END)
fault('colour-type-5', header(W, H, 8, 5), DATA, END)
fault('interlace-2', header(W, H, 8, RGB, 2), DATA, END)
fault('compression-1', header(W, H, 8, RGB, 0, 1), DATA, END)
fault('filtering-64', header(W, H, 8, RGB, 0, 0, 64), DATA, END)
fault('unknown-critical', HEAD, chunk(b'ABCD', b'1234'), DATA, END)
fault('data-before-header', DATA, HEAD, END)
fault('nonsense-before-data', HEAD, b'\0\0\0\4\1\2\3\4' + bytes(8), DATA, END)
fault('width-0', header(0, H, 8, RGB), DATA, END)
fault('width-32768', header(32768, 1, 1, GREY), data(bytes(4097)), END)
fault('height-2^31', header(1, 2 ** 31, 1, GREY), DATA, END)
fault('bomb', header(30000, 30000, 8, RGB), DATA, END)
PYTHON
