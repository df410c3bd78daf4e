"""The numbers that are no conversion of many pictures: memory, decodes, start-up."""

import re
import shutil
import sys

from . import corpus, machine
from .measure import fresh
from .ours import Program, copy_of, resident
from .process import finish

LARGE = "tree"  # 20 megapixels, baseline
BOTH = ("jpg", "png")


def large(work, form="baseline"):
    """The large photo under a name that gets both copies."""
    (photo,) = (file for file in corpus.pictures(form) if file.stem == LARGE)
    return shutil.copyfile(photo, fresh(work / "in") / f"{LARGE}.jpeg")


def decodes(environment, work, _):
    """How many decodes begin for one file with both boxes on; a progressive one, which the library decodes."""
    told = work / "decodes"
    preload = {"LD_PRELOAD": str(machine.BENCH / "count_decodes.so"), "COUNT_DECODES": str(told)}
    Program(environment, work, BOTH, preload).run([large(work, "progressive")])
    return {"now": len(told.read_text().splitlines())}


def peak(environment, work, _):
    """Our peak of resident memory over ImageMagick's, one process each, both copies written."""
    photo = large(work)
    ours = Program(environment, work, BOTH).run([photo])
    theirs = finish(["convert", photo, "-write", work / "peer.png", work / "peer.jpg"], environment)
    detail = f"{ours.peak / 1024:.0f} MiB, ImageMagick {theirs.peak / 1024:.0f} MiB"
    return {"now": ours.peak / theirs.peak, "detail": detail}


def resident_growth(environment, work, _):
    """How much more is resident at file 300 than at file 50."""
    folder = fresh(work / "in")
    files = [shutil.copyfile(file, folder / f"{file.stem}.jpeg") for file in corpus.pictures("small")]
    fiftieth, last = copy_of(files[49], "jpg"), copy_of(files[-1], "jpg")
    told = {}

    def watch(pid):
        for file in (fiftieth, last):
            if file not in told and file.exists():
                told[file] = resident(pid) / 1024

    Program(environment, work, BOTH).run(files, watch)
    detail = f"{told[fiftieth]:.1f} MiB at file 50, {told[last]:.1f} MiB at file 300"
    return {"now": told[last] - told[fiftieth], "detail": detail}


def startup(_, __, rounds):
    """The time to the shown window over a bare window's."""
    script = machine.ROOT / "bench/startup.py"
    runs = str(max(10, 6 * rounds))
    line = machine.run(sys.executable, script, machine.PROGRAM, machine.BENCH / "bare_window", runs).strip()
    return {"now": float(re.search(r"ratio ([\d.]+)", line)[1]), "detail": line}


MEASURES = {"decodes": decodes, "peak": peak, "resident": resident_growth, "startup": startup}
