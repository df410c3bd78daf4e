#!/usr/bin/python3
"""A very long run takes no more memory, descriptors or files than a short one: conversions.py [--files N]

Small pictures of all formats are converted to both in one run; by hand, since it takes long.
"""

import itertools
import os
import shutil
import time
from pathlib import Path

import pictures
from table import ROOT, Overdue, check, equal, names, option

DATA = ROOT / "tests/data"
SAMPLES = 40  # looks at the process in the course of a run
MOST_GROWTH = 4 << 20  # bytes, from the run's first tenth to its end


def small_pictures(folder):
    """One of each kind: our own test files that open, and some made here."""
    made = [folder / f"model.{kind}" for kind in ("gif", "png", "jpg", "tif", "bmp")]
    for path in made:
        pictures.make(path, size="64x48")
    kept = [
        "jpeg/progressive.jpg",
        "jpeg/cmyk-adobe.jpg",
        "jpeg/turned-6.jpg",
        "tiff/bilevel-g4.tif",
        "tiff/lzw-predictor.tif",
        "tiff/rgb16.tif",
        "tiff/jpeg-ycbcr.tif",
        "pict/v2-32bit-pack4.pict",
        "pict/text.pict",
        "pict/quicktime-png.pict",
        "gif/" + sorted(path.name for path in (DATA / "gif").glob("[!b]*.gif"))[0],
        *sorted(f"png/good/{path.name}" for path in (DATA / "png/good").glob("*.png"))[::8],
    ]
    return [*made, *(DATA / path for path in kept)]


def lay(place, count):
    """The files' names, each of another picture than the one before."""
    models = small_pictures(place.settings)
    laid = []
    for number, model in zip(range(count), itertools.cycle(models)):
        laid.append(f"{number}.{model.suffix[1:3]}")  # a suffix that no copy bears
        shutil.copyfile(model, place.pictures / laid[-1])
    return laid


class Use:
    """What a process holds at one moment."""

    def __init__(self, process, taken):
        status = Path(f"/proc/{process.pid}/status").read_text()
        self.memory = int(status.split("VmRSS:")[1].split()[0]) << 10
        self.most = int(status.split("VmHWM:")[1].split()[0]) << 10
        self.descriptors = len(os.listdir(f"/proc/{process.pid}/fd"))
        self.taken = taken

    def __str__(self):
        return f"{self.taken} files: {self.memory / 2**20:.1f} MiB, {self.descriptors} descriptors"


def watch(program, count):
    """Looks at the program in equal steps until it has taken in all files."""
    uses = []
    patience = time.monotonic() + 60 + count
    while not uses or uses[-1].taken < count:
        if time.monotonic() > patience:
            raise Overdue(f"only {uses[-1] if uses else 'nothing'}")
        equal(program.message(), None, "a message")
        taken = program.taken() or 0
        if taken >= (len(uses) + 1) * count // SAMPLES:
            uses.append(Use(program.process, taken))
        time.sleep(0.2)
    return uses


def long_run(count):
    def row(place):
        place.prefer("ConversionJPG=OK\nConversionPNG=OK\nTauxJPG=70\n")
        laid = lay(place, count)
        with place.start(*laid) as program:
            uses = watch(program, count)
            equal(program.close(), 0, "exit status")
        for use in uses[:: SAMPLES // 5]:
            print(f"        {use}")
        print(f"        at the end {uses[-1]}, at most {uses[-1].most / 2**20:.1f} MiB", flush=True)
        early = uses[: len(uses) // 10 + 1]
        most = max(use.descriptors for use in early)  # the session bus takes some now and then
        grown = uses[-1].memory - early[-1].memory
        equal(grown <= MOST_GROWTH, True, f"memory stays ({early[-1]}; {uses[-1]})")
        equal(uses[-1].descriptors <= most, True, f"descriptors stay ({most}; {uses[-1]})")
        equal(len(names(place.pictures)), 3 * count, "files in the folder")
        hidden = [name for name in names(place.pictures) if name.startswith(b".")]
        equal(hidden, [], "temporary files")

    return row


FILES = int(option("--files", 20000))
check([(f"{FILES} files in one run", long_run(FILES))])
