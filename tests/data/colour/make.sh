#!/bin/sh
# Makes the ICC profiles beside this script, byte by byte after ICC.1:2001-04 and ICC.1:2010, so that no
# colour library judges itself. Prints the colours that TestColour.cpp expects, computed from the formulas.
cd "$(dirname "$0")" && exec python3 - <<'PYTHON'
import struct

def s15(*values): return b''.join(struct.pack('>i', round(v * 65536)) for v in values)
def xyz(*values): return b'XYZ \0\0\0\0' + s15(*values)
def gamma(g): return b'curv\0\0\0\0' + struct.pack('>IH', 1, round(g * 256))
def table(entries): return b'curv\0\0\0\0' + struct.pack('>I%dH' % len(entries), len(entries), *entries)
def parametric(*p): return b'para\0\0\0\0\0\3\0\0' + s15(*p)
def text(t): return b'desc\0\0\0\0' + struct.pack('>I', len(t) + 1) + t + b'\0' * 79

D50 = (0.9642, 1.0, 0.8249)
SRGB = [(0.43607, 0.22249, 0.01392), (0.38515, 0.71687, 0.09708), (0.14307, 0.06061, 0.71410)]
ADOBE = [(0.60974, 0.31111, 0.01947), (0.20528, 0.62567, 0.06087), (0.14919, 0.06322, 0.74457)]

def profile(name, space, tags, version=0x02400000, kind=b'mntr', pcs=b'XYZ '):
    tags = {b'desc': text(name.encode()), b'wtpt': xyz(*D50), **tags}
    body, index, start = b'', b'', 132 + 12 * len(tags)
    for tag, data in tags.items():
        index += tag + struct.pack('>II', start + len(body), len(data))
        body += data + b'\0' * (-len(data) % 4)
    head = struct.pack('>I4sI4s4s4s12s4s', start + len(body), b'\0' * 4, version, kind, space, pcs,
                       b'\7\xd0\0\1\0\1' + b'\0' * 6, b'acsp')
    head = (head + b'\0' * 28 + s15(*D50)).ljust(128, b'\0')
    whole = head + struct.pack('>I', len(tags)) + index + body
    open(name + '.icc', 'wb').write(whole)
    return whole

def rgb(primaries, curve):
    tags = {t: xyz(*c) for t, c in zip((b'rXYZ', b'gXYZ', b'bXYZ'), primaries)}
    return {**tags, b'rTRC': curve, b'gTRC': curve, b'bTRC': curve}

def decode(v): return v / 12.92 if v <= 0.04045 else ((v + 0.055) / 1.055) ** 2.4
def encode(v):
    v = min(max(v, 0), 1)
    return 12.92 * v if v <= 0.0031308 else 1.055 * v ** (1 / 2.4) - 0.055

SRGB_CURVE = parametric(2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045)
SRGB_TABLE = table([round(65535 * decode(i / 1023)) for i in range(1024)])
adobe = profile('adobe', b'RGB ', rgb(ADOBE, gamma(563 / 256)))
profile('srgb-table', b'RGB ', rgb(SRGB, SRGB_TABLE))
profile('srgb-v4', b'RGB ', rgb(SRGB, SRGB_CURVE), 0x04300000)
profile('rotated', b'RGB ', rgb(SRGB[1:] + SRGB[:1], SRGB_CURVE), 0x04300000)
profile('grey-linear', b'GRAY', {b'kTRC': gamma(1)})
profile('grey-srgb', b'GRAY', {b'kTRC': SRGB_TABLE})
profile('link', b'RGB ', rgb(ADOBE, gamma(2)), kind=b'link')
open('cut.icc', 'wb').write(adobe[:300])

# Inks as a cube of two grid points a side: every corner's Lab is the paper's minus what its inks take.
def corner(c, m, y, k):
    if k: return 8 if c or m or y else 12, 0, 0
    return 100 - 30 * c - 40 * m - 5 * y, 70 * m - 35 * c, 90 * y - 50 * c
def lab8(L, a, b): return bytes((round(L * 2.55), round(a) + 128, max(0, min(255, round(b) + 128))))
straight = bytes(range(256))
grid = b''.join(lab8(*corner(i >> 3 & 1, i >> 2 & 1, i >> 1 & 1, i & 1)) for i in range(16))
inks = b'mft1\0\0\0\0\4\3\2\0' + s15(1, 0, 0, 0, 1, 0, 0, 0, 1) + straight * 4 + grid + straight * 3
profile('inks', b'CMYK', {b'A2B0': inks}, kind=b'prtr', pcs=b'Lab ')

# The same, and a chain of one matrix that makes every mixture the same grey.
element = b'matf\0\0\0\0' + struct.pack('>HH15f', 4, 3, *[0] * 12, 50, 0, 0)
chain = b'mpet\0\0\0\0' + struct.pack('>HHIII', 4, 3, 1, 24, len(element)) + element
profile('inks-chain', b'CMYK', {b'A2B0': inks, b'D2B0': chain, b'D2B1': chain}, kind=b'prtr', pcs=b'Lab ')

def inverse(m):
    cof = [[m[(j + 1) % 3][(i + 1) % 3] * m[(j + 2) % 3][(i + 2) % 3]
            - m[(j + 1) % 3][(i + 2) % 3] * m[(j + 2) % 3][(i + 1) % 3] for j in range(3)] for i in range(3)]
    det = sum(m[0][i] * cof[i][0] for i in range(3))
    return [[c / det for c in row] for row in cof]
def apply(m, v): return [sum(a * b for a, b in zip(row, v)) for row in m]
def columns(primaries): return [list(row) for row in zip(*primaries)]
def show(what, sample, primaries, curve):
    light = apply(inverse(columns(SRGB)), apply(columns(primaries), [curve(v / 255) for v in sample]))
    print(what, sample, '->', [round(255 * encode(v)) for v in light])
for sample in ((200, 100, 50), (40, 90, 140), (128, 128, 128), (255, 255, 255)):
    show('adobe', sample, ADOBE, lambda v: v ** (563 / 256))
show('gamma 1.0', (10, 128, 250), SRGB, lambda v: v)
show('gamma 0.35', (10, 128, 250), SRGB, lambda v: v ** (1 / 0.35))
def light(L, a, b):
    f = (L + 16) / 116
    return [w * (t ** 3 if t > 6 / 29 else (t - 4 / 29) * 108 / 841)
            for w, t in zip(D50, (f + a / 500, f, f - b / 200))]
black = light(8, 0, 0)
cyan = [(v - k) * w / (w - k) for v, k, w in zip(light(*corner(1, 0, 0, 0)), black, D50)]
print('inks cyan ->', [round(255 * encode(v)) for v in apply(inverse(columns(SRGB)), cyan)])
show('grey-linear', (64,) * 3, SRGB, lambda v: v)
PYTHON
