#!/usr/bin/python3
"""filemanagers.py: drags pictures out of file managers that people use, and looks at what becomes of them.

Not part of ./test: it wants file managers installed, and knows them by where they draw their icons.

    apt-get install --no-install-recommends pcmanfm thunar
    tools/filemanagers.py            each that is installed: one file, five files, 300 files
"""

import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tests/program"))

import pictures
import table
from desk.screen import Screen
from desk.wait import until

# How each is started, and where in its window the first icon lies.
MANAGERS = {
    "thunar": (["thunar"], (210, 148)),
    "pcmanfm": (["pcmanfm"], (205, 116)),
}
BLANK = [(255, 255, 255), (0, 0, 0)]


def pointer(*command):
    subprocess.run(["xdotool", *map(str, command)], check=True)


def press_first(screen, window, at):
    """Makes the file manager's window known in place and size, selects all, presses on the first picture."""
    pointer("windowsize", "--sync", window, 600, 500, "windowmove", "--sync", window, 10, 40)
    pointer("windowactivate", "--sync", window)
    left, top = 10 + at[0], 40 + at[1]
    until(lambda: screen.pixel(left, top) not in BLANK, "the first picture's icon")
    pointer("mousemove", left, top, "key", "ctrl+a")
    pointer("mousedown", 1)
    for step in range(1, 8):
        pointer("mousemove", left + 6 * step, top + 6 * step)


def carry_over(program):
    """Stays over the middle of the window until it has answered several moves, then lets go."""
    left, top, width, height = program.find("frame").box
    for step in range(20):
        pointer("mousemove", left + width // 2 + step % 2, top + height // 2)
        until(program.labels, "an answer of the window")
    pointer("mouseup", 1)
    until(lambda: (program.taken() or 0) > 0, "the first file of the drop")


def drag(screen, name, count, place):
    """Drags `count` pictures out of a file manager; what became of them, and whether that is right."""
    from desk.program import Program

    command, at = MANAGERS[name]
    folder = place / "pictures"
    folder.mkdir()
    for number in range(count):
        pictures.make(folder / f"{number:03}.gif", size="300x200")
    env = dict(os.environ, HOME=str(place), XDG_CONFIG_HOME=str(place / "config"))
    with Program(table.PROGRAM, settings=place / "settings") as program:
        program.idle(0)
        pointer("windowmove", "--sync", program.shown(), 660, 300)
        quiet = subprocess.DEVNULL
        manager = subprocess.Popen([*command, folder], env=env, stdout=quiet, stderr=quiet)
        try:
            window = until(lambda: shown(manager.pid), "the file manager's window")
            press_first(screen, window, at)
            carry_over(program)
            # A sender that still waits for its answer would not hear that it is to close.
            subprocess.run(["wmctrl", "-i", "-c", window], check=True)
            until(lambda: shown(manager.pid) is None, "the file manager's window to close")
            waiting = count - (program.taken() or 0)
            program.idle(count)
        finally:
            pointer("mouseup", 1)
            manager.kill()
            manager.wait()
        title, status = program.title(), program.close()
    copies = sum(name.endswith(".png") for name in os.listdir(folder))
    good = (
        copies == count
        and len(os.listdir(folder)) == 2 * count
        and status == 0
        and (waiting > 0 or count < 300)
    )
    return f"{copies} copies, title {title!r}, {waiting} waiting when the file manager had closed", good


def shown(pid):
    found = subprocess.run(
        ["xdotool", "search", "--onlyvisible", "--all", "--pid", str(pid), "--class", "."],
        capture_output=True,
        text=True,
        check=False,
    ).stdout.split()
    return found[-1] if found else None


def main():
    installed = [name for name in MANAGERS if shutil.which(name)]
    if not installed:
        sys.exit("none installed of: " + ", ".join(MANAGERS))
    good = True
    with Screen(1300, 900) as screen:
        for name in installed:
            for count in (1, 5, 300):
                with tempfile.TemporaryDirectory(prefix="veltrane-drag-") as place:
                    told, passed = drag(screen, name, count, Path(place))
                print(f"{'ok    ' if passed else 'FAILED'} {name}, {count} files: {told}", flush=True)
                good = good and passed
    sys.exit(0 if good else 1)


main()
