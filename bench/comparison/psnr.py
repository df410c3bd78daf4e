#!/usr/bin/python3
"""psnr.py SOURCES COPIES: the PSNR of each JPEG against the picture that it was made of, a line each.

A process of its own: what the caller holds in memory would count as the memory of what it starts.
"""

import math
import sys
from pathlib import Path

import numpy
from PIL import Image


def rows(path):
    with Image.open(path) as picture:
        return numpy.asarray(picture.convert("RGB"), dtype=numpy.float32)


for file in sorted(Path(sys.argv[1]).iterdir()):
    copy = Path(sys.argv[2], file.stem + ".jpg")
    error = float(numpy.mean((rows(file) - rows(copy)) ** 2, dtype=numpy.float64))
    print(file.stem, f"{10 * math.log10(255**2 / error) if error else 99:.3f}")
