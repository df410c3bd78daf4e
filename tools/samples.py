#!/usr/bin/env python3
"""Compares what `probe` makes of a folder of samples with the outcomes it should have.

    tools/samples.py FOLDER [--probe build/check/probe] [--only jpeg] [--verbose]

FOLDER holds EXPECTED.tsv: a line of headings, then file, outcome (decode, refuse or either), size once
turned upright, and the file of expected pixels (raw RGBA rows) where there is one. Prints each file that
misses its outcome and the score by format. Exit status 1 when a file misses.

Pixels may differ by nothing, but for formats that do not store them exactly: see `limits`.
"""

import argparse
import collections
import csv
import pathlib
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
    largest, mean = differences(got, expected)
    limit = limits(row['file'])
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
