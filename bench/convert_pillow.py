#!/usr/bin/python3
"""Pillow at its defaults: convert_pillow.py png|jpg FOLDER FILE…"""

import sys
from pathlib import Path

from PIL import Image

suffix, folder, *files = sys.argv[1:]
options = {"quality": 70} if suffix == "jpg" else {}
for file in files:
    with Image.open(file) as picture:
        if suffix == "jpg" and picture.mode not in ("L", "RGB"):
            picture = picture.convert("RGB")
        picture.save(Path(folder, f"{Path(file).stem}.{suffix}"), **options)
