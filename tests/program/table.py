"""What the tests in a real window share: a table of rows, each named for the fault that it catches."""

import os
import shutil
import subprocess
import sys
import tempfile
import traceback
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tools"))

from desk import wait  # noqa: E402, F401
from desk.screen import Screen  # noqa: E402
from desk.wait import Overdue, until  # noqa: E402, F401

NOT_BUILT = 77  # ctest counts it as skipped
PROGRAM = os.environ.get("VELTRANE", str(ROOT / "build/release/Veltrane"))


class Skipped(Exception):
    """The machine cannot do what a row wants."""


def option(name, usual):
    """The value behind an option on the command line, which is taken away from there; `usual` without it."""
    if name not in sys.argv:
        return usual
    place = sys.argv.index(name)
    _, value = sys.argv[place : place + 2]
    del sys.argv[place : place + 2]
    return value


def equal(shown, wanted, what):
    """Raises unless both are equal."""
    if shown != wanted:
        raise AssertionError(f"{what}: {shown!r}, not {wanted!r}")


def names(folder):
    """The names of what a folder holds, in order, as bytes."""
    return sorted(os.listdir(os.fsencode(folder)))


class Place:
    """What each row starts with: a screen shared by all, an empty folder and empty settings of its own."""

    def __init__(self, screen, folder):
        self.screen = screen
        self.pictures = folder / "pictures"
        self.settings = folder / "settings"
        self.pictures.mkdir()
        self.settings.mkdir()

    def start(self, *documents, **options):
        """Starts the program; documents are named as they lie in the folder of pictures."""
        from desk.program import Program

        options.setdefault("settings", self.settings)
        options.setdefault("cwd", self.pictures)
        return Program(PROGRAM, documents, **options)

    def inside(self, folder):
        """A place like this one, in a folder of its own."""
        folder.mkdir()
        return Place(self.screen, folder)

    def prefer(self, text):
        (self.settings / "Veltrane.pref").write_text(text)

    def preferred(self):
        """The lines of the stored settings."""
        return (self.settings / "Veltrane.pref").read_text().splitlines()


def both_ticked(place):
    place.prefer("ConversionJPG=OK\nConversionPNG=OK\nTauxJPG=70\n")


def _row(name, check, screen):
    folder = Path(tempfile.mkdtemp(prefix="veltrane-row-"))
    try:
        check(Place(screen, folder))
        print(f"ok      {name}", flush=True)
        return True
    except Skipped as reason:
        print(f"skipped {name}: {reason}", flush=True)
        return True
    except Exception as failure:
        print(f"FAILED  {name}: {failure}", flush=True)
        if not isinstance(failure, AssertionError):
            traceback.print_exc(file=sys.stdout)
        return False
    finally:
        subprocess.run(["chmod", "-R", "u+rwX", folder], check=False)
        shutil.rmtree(folder)


def check(rows, screen=(1280, 1024)):
    """Runs a table of (name, check) on one screen; with arguments, the rows whose names hold one of them."""
    if not os.access(PROGRAM, os.X_OK):
        print(f"not built: {PROGRAM}")
        sys.exit(NOT_BUILT)
    wanted = [row for row in rows if not sys.argv[1:] or any(part in row[0] for part in sys.argv[1:])]
    with Screen(*screen) as desk:
        passed = [_row(name, check, desk) for name, check in wanted]
    sys.exit(0 if passed and all(passed) else 1)
