#!/usr/bin/env python3
"""Compares what `probe` makes of a folder of samples with the outcomes it should have.

    tools/samples.py FOLDER [--probe build/check/probe] [--only jpeg] [--verbose]

FOLDER holds EXPECTED.tsv: a line of headings, then file, outcome (decode, refuse or either), size once
turned upright, and the file of expected pixels (raw RGBA rows) where there is one. Prints each file that
misses its outcome and the score by format. Exit status 1 when a file misses.

Pixels may differ by nothing, but for formats that do not store them exactly: see `limits`. The expected
pixels of a PNG are its stored samples; where its chunks tell another gamma or other primaries than sRGB's, they
are converted here first, with arithmetic that shares nothing with the program's.
"""

import argparse
import collections
import csv
import pathlib
import struct
import subprocess
import sys
import tempfile

Limit = collections.namedtuple('Limit', 'most mean')


def limits(name):
    """How far a channel may be off in any pixel, and on average over the picture (None: any)."""
    path = pathlib.PurePath(name)
    if path.suffix.lower() in ('.jpg', '.jpeg') or 'jpeg' in path.stem:
        return Limit(None, 4)
    if path.suffix.lower() in ('.pict', '.pct', '.pic') and '16bit' in path.stem:
        return Limit(8, None)
    sixteen = path.suffix.lower() == '.png' and path.stem.endswith('16')
    if sixteen or '16' in path.stem or 'palette' in path.stem or 'float' in path.stem:
        return Limit(1, None)
    return Limit(0, None)


def differences(got, expected):
    """The largest and the mean difference of a channel; colour counts only where there is some."""
    largest = total = 0
    for i in range(0, len(expected), 4):
        a, b = got[i:i + 4], expected[i:i + 4]
        if a == b:
            continue
        channels = (3,) if b[3] == 0 else (0, 1, 2, 3)
        for k in channels:
            off = abs(a[k] - b[k])
            largest = max(largest, off)
            total += off
    return largest, total / max(len(expected), 1)


def matrix_product(a, b):
    return [[sum(a[i][k] * b[k][j] for k in range(3)) for j in range(len(b[0]))] for i in range(3)]


def inverse(m):
    (a, b, c), (d, e, f), (g, h, i) = m
    det = a * (e * i - f * h) - b * (d * i - f * g) + c * (d * h - e * g)
    return [[(e * i - f * h) / det, (c * h - b * i) / det, (b * f - c * e) / det],
            [(f * g - d * i) / det, (a * i - c * g) / det, (c * d - a * f) / det],
            [(d * h - e * g) / det, (b * g - a * h) / det, (a * e - b * d) / det]]


def to_xyz(white, *primaries):
    """The matrix from linear RGB of these chromaticities to XYZ, the white at Y = 1."""
    columns = [[x / y, 1, (1 - x - y) / y] for x, y in primaries]
    m = [[columns[j][i] for j in range(3)] for i in range(3)]
    x, y = white
    scale = matrix_product(inverse(m), [[x / y], [1], [(1 - x - y) / y]])
    return [[m[i][j] * scale[j][0] for j in range(3)] for i in range(3)]


BRADFORD = [[0.8951, 0.2664, -0.1614], [-0.7502, 1.7135, 0.0367], [0.0389, -0.0685, 1.0296]]
SRGB = ((0.3127, 0.3290), (0.64, 0.33), (0.30, 0.60), (0.15, 0.06))


def to_srgb(primaries):
    """The matrix from linear RGB of these chromaticities to linear sRGB, the white adapted."""
    def cone(white):
        x, y = white
        return matrix_product(BRADFORD, [[x / y], [1], [(1 - x - y) / y]])
    ours, theirs = cone(SRGB[0]), cone(primaries[0])
    scale = [[ours[i][0] / theirs[i][0] if i == j else 0 for j in range(3)] for i in range(3)]
    adapt = matrix_product(inverse(BRADFORD), matrix_product(scale, BRADFORD))
    return matrix_product(inverse(to_xyz(*SRGB)), matrix_product(adapt, to_xyz(*primaries)))


def png_colour(file):
    """(gamma, primaries) that a PNG tells and that are not sRGB's own; nothing when it is sRGB."""
    data, at, chunks = file.read_bytes(), 8, {}
    while at + 12 <= len(data):
        length, kind = struct.unpack('>I4s', data[at:at + 8])
        chunks.setdefault(kind, data[at + 8:at + 8 + length])
        at += 12 + length
    if b'gAMA' not in chunks or chunks.keys() & {b'sRGB', b'iCCP', b'cICP'}:
        return None
    gamma = struct.unpack('>I', chunks[b'gAMA'])[0] / 100000
    primaries = None
    if b'cHRM' in chunks:
        numbers = [n / 100000 for n in struct.unpack('>8I', chunks[b'cHRM'])]
        primaries = tuple(zip(numbers[::2], numbers[1::2]))
    return (gamma, primaries) if primaries or abs(gamma - 0.45455) > 0.001 else None


def converted(rows, gamma, primaries):
    """Straight RGBA samples of that gamma and those primaries as sRGB."""
    linear = [(v / 255) ** (1 / gamma) for v in range(256)]
    m = to_srgb(primaries) if primaries else None

    def encode(v):
        v = min(max(v, 0), 1)
        v = 12.92 * v if v <= 0.0031308 else 1.055 * v ** (1 / 2.4) - 0.055
        return int(v * 255 + 0.5)
    out = bytearray(rows)
    for i in range(0, len(rows), 4):
        rgb = [linear[v] for v in rows[i:i + 3]]
        if m:
            rgb = [sum(m[j][k] * rgb[k] for k in range(3)) for j in range(3)]
        out[i:i + 3] = bytes(encode(v) for v in rgb)
    return bytes(out)


def judge(row, answer, rows):
    """What is wrong with the answer, or nothing."""
    decoded = answer[1] == 'decoded'
    if row['outcome'] == 'either' and not decoded:
        return ''
    if decoded != (row['outcome'] != 'refuse'):
        return f"should {row['outcome']}: {' '.join(answer[1:])}"
    if not decoded:
        return ''
    if row['size'] and row['size'] != answer[2]:
        return f"size {answer[2]}, should be {row['size']}"
    if not row['pixels']:
        return ''
    expected = pathlib.Path(row['folder'], row['pixels']).read_bytes()
    got = rows.read_bytes()
    if len(got) != len(expected):
        return f'{len(got)} bytes of pixels, should be {len(expected)}'
    limit = limits(row['file'])
    file = pathlib.Path(row['folder'], row['file'])
    colour = png_colour(file) if file.suffix == '.png' else None
    if colour:
        expected = converted(expected, *colour)
        # Expected samples of 16 bits were rounded to 8; a dark one's half a level becomes several.
        limit = Limit(8 if file.stem.endswith('16') else 1, None)
    largest, mean = differences(got, expected)
    if (limit.most is not None and largest > limit.most) or (limit.mean is not None and mean > limit.mean):
        return f'channels off by up to {largest}, {mean:.2f} on average'
    return ''


def table(folder, only):
    with open(folder / 'EXPECTED.tsv', encoding='utf-8', newline='') as file:
        for row in csv.DictReader(file, delimiter='\t', quoting=csv.QUOTE_NONE):
            row['folder'] = folder
            if not only or row['file'].startswith(only):
                yield row


def main():
    parser = argparse.ArgumentParser(description='Scores probe on a folder of samples.')
    parser.add_argument('folder', type=pathlib.Path)
    parser.add_argument('--probe', default='build/check/probe')
    parser.add_argument('--only', help='files whose name in the table begins so')
    parser.add_argument('--verbose', action='store_true', help='print every answer')
    options = parser.parse_args()

    expected = list(table(options.folder, options.only))
    files = [str(options.folder / row['file']) for row in expected]
    with tempfile.TemporaryDirectory() as scratch:
        run = subprocess.run([options.probe, '--rgba', scratch, *files], capture_output=True, timeout=900)
        answers = [line.split('\t') for line in run.stdout.decode('utf-8', 'replace').splitlines()]
        if run.returncode != 0 or len(answers) != len(files):
            sys.exit(f'probe ended with {run.returncode} after {len(answers)} of {len(files)} files\n'
                     + run.stderr.decode('utf-8', 'replace'))
        score = collections.defaultdict(lambda: [0, 0])
        for i, (row, answer) in enumerate(zip(expected, answers)):
            fault = judge(row, answer, pathlib.Path(scratch, f'{i}.rgba'))
            group = score[row['file'].split('/')[0]]
            group[0] += not fault
            group[1] += 1
            if fault or options.verbose:
                print(row['file'], fault or 'as expected: ' + ' '.join(answer[1:]), sep='\t')
    for group, (good, count) in score.items():
        print(f'{group}: {good} of {count}')
    sys.exit(any(good != count for good, count in score.values()))


if __name__ == '__main__':
    main()
