#!/usr/bin/python3
"""show.py [pictures…]: has the program convert pictures on a virtual screen, and says where everything is.

Without a picture it makes one. Called by ./run where there is no screen.
"""

import contextlib
import os
import socket
import subprocess
import sys
from pathlib import Path
from urllib.parse import unquote_to_bytes, urlsplit

from desk import wait
from desk.screen import Screen

BUILD = Path(__file__).resolve().parent.parent / "build"
PROGRAM = BUILD / "release/Veltrane"
SCREENSHOT = BUILD / "screenshot.png"
LONGEST = 3600.0  # seconds; large pictures take their time
REFUSED = "Le fichier « "


def sample():
    """A picture of our own, in a folder of the build."""
    picture = BUILD / "sample/couleurs.gif"
    picture.parent.mkdir(exist_ok=True)
    subprocess.run(["convert", "-size", "480x320", "plasma:orange-navy", "-blur", "0x4", picture], check=True)
    return os.fspath(picture)


def path_of(document):
    """The path that an argument means: itself, or what a "file:" address names, as the program reads it."""
    address = urlsplit(document)
    local = address.netloc in ("", "localhost", socket.gethostname())
    if os.path.lexists(document) or address.scheme != "file" or not local:
        return document
    return os.fsdecode(unquote_to_bytes(address.path))


def contents(folders):
    """Every file of the folders, with what tells one version of it from the next."""
    files = {}
    for folder in folders:
        with contextlib.suppress(OSError), os.scandir(folder) as entries:
            for entry in entries:
                about = entry.stat(follow_symlinks=False)
                if not entry.is_dir():
                    files[os.path.normpath(entry.path)] = (about.st_ino, about.st_mtime_ns, about.st_size)
    return files


class Show:
    """A run of the program whose boxes are read out and answered."""

    def __init__(self, program):
        self.program = program
        self.refused = 0

    def answered(self):
        """Reads out a box, if one is open, and answers it."""
        if self.program.message() is None:
            return
        message = self.program.answer()
        self.refused += message.startswith(REFUSED)
        say("Veltrane says", message)

    def finished(self, files):
        self.answered()
        taken = self.program.taken()
        return taken is not None and taken + self.refused >= files

    def ended(self):
        if self.program.running:
            try:
                self.answered()
            except wait.Overdue:
                pass  # it ended while it was asked
        return not self.program.running


def say(what, *things):
    print(f"{what}:", *things, flush=True)


def show(documents):
    paths = [path_of(document) for document in documents]
    there = [path for path in paths if os.path.exists(path)]
    for path in set(paths) - set(there):
        say("not there", path)
    folders = {os.path.dirname(os.path.abspath(path)) for path in there}
    before = contents(folders)

    with Screen() as screen:
        from desk.program import Program  # it finds its bus by the screen's environment

        with Program(PROGRAM, documents) as program:
            window = program.shown()
            run = Show(program)
            wait.until(lambda: run.finished(len(there)), "the end of the conversion", LONGEST)
            screen.shoot(SCREENSHOT, window)
            program.ask_to_close()
            wait.until(run.ended, "the end of the program")
            status = program.ended()

    after = contents(folders)
    for path in sorted(path for path in after if before.get(path) != after[path]):
        say("written", path)
    say("screenshot", SCREENSHOT)
    say("settings", settings())
    say("program", PROGRAM)
    return status


def settings():
    folder = os.environ.get("XDG_CONFIG_HOME") or os.path.expanduser("~/.config")
    return os.path.join(folder, "Veltrane.pref")


if __name__ == "__main__":
    sys.stdout.reconfigure(errors="surrogateescape")
    sys.exit(show(sys.argv[1:] or [sample()]))
