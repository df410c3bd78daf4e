"""The built program in its window, with the pictures as its documents."""

import os
import re
import shutil
import time
from pathlib import Path

from . import machine
from .process import Process, Taken

OWN_SUFFIXES = (".jpg", ".jpeg", ".png", ".bmp", ".gif")  # what gives way to a copy's suffix
LONGEST = 600.0  # seconds


def copy_of(file, suffix):
    """Where the program writes its copy of a file."""
    stem = file.stem if file.suffix in OWN_SUFFIXES else file.name
    return file.with_name(f"{stem}.{suffix}")


class Program:
    """The program with the given boxes on, on the screen of an environment."""

    name = "Veltrane"

    def __init__(self, environment, folder, boxes, preload=None):
        self.boxes = boxes
        self.start = Taken()
        settings = Path(folder, "settings-" + "-".join(boxes))
        settings.mkdir(exist_ok=True)
        told = {box: "OK" if box in boxes else "ko" for box in ("jpg", "png")}
        (settings / "Veltrane.pref").write_text(
            f"ConversionJPG={told['jpg']}\nConversionPNG={told['png']}\nTauxJPG=70\n"
        )
        # As on most desks no screen reader listens.
        silent = {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "NO_AT_BRIDGE"}
        self.environment = {name: value for name, value in environment.items() if name not in silent}
        self.environment["XDG_CONFIG_HOME"] = os.fspath(settings)
        self.environment.update(preload or {})

    def begin(self, _, __, trivial):
        """Measures a start of the program: with a picture of one pixel."""
        self.start = self.run([trivial])

    def convert(self, _, folder, files):
        """What the work took, the start-up taken off; the copies are moved to the folder."""
        taken = self.run(files).less(self.start)
        for file in files:
            for box in self.boxes:
                copy = copy_of(file, box)
                shutil.move(copy, folder / f"{file.stem}.{box}")
        return taken

    def run(self, files, watch=lambda pid: None):
        """A whole run; the wall clock stops when the last copy is there. `watch` is called until then, and then."""
        last = copy_of(files[-1], "jpg" if "jpg" in self.boxes else "png")
        last.unlink(missing_ok=True)
        process = Process([machine.PROGRAM, *files], self.environment)
        while not last.exists():
            if process.has_ended() or process.elapsed() > LONGEST:
                process.popen.kill()
                raise RuntimeError(f"no copy of {files[-1].name}")
            watch(process.pid)
            time.sleep(0.001)
        wall = process.elapsed()
        watch(process.pid)
        process.popen.terminate()  # as the close button: it waits for its turn
        taken = process.ended()
        return Taken(taken.cpu, wall, taken.peak)


def resident(pid):
    """The resident size of a process, in KiB."""
    return int(re.search(r"VmRSS:\s+(\d+)", Path(f"/proc/{pid}/status").read_text())[1])
