#!/usr/bin/python3
"""The program on a Wayland compositor and without an X server: it shows, converts, takes a second start, closes.

The compositor is Weston without a screen. It knows no pointer and no activation there, so that drags and the
way to the front cannot be tried.
"""

import contextlib
import os
import shutil
import signal
import subprocess

import pictures
from table import Skipped, check, equal, until

# As under a session of that kind: nothing but the compositor says where the window is to go.
NATIVE = ("env", "-u", "DISPLAY", "-u", "QT_QPA_PLATFORM")


@contextlib.contextmanager
def compositor(place):
    """Weston; what it is entered as is the environment that leads to it."""
    if shutil.which("weston") is None:
        raise Skipped("no Weston")
    folder = place.settings / "run"
    folder.mkdir(mode=0o700)
    env = dict(os.environ, XDG_RUNTIME_DIR=os.fspath(folder))
    command = ["weston", "--backend=headless-backend.so", "--use-pixman", "--no-config", "--debug"]
    with open(folder / "log", "wb") as log:
        server = subprocess.Popen(
            [*command, "--width=1024", "--height=768", "--socket=wayland-1"], env=env, stdout=log, stderr=log
        )
    try:
        until((folder / "wayland-1").exists, "the compositor")
        yield {"XDG_RUNTIME_DIR": os.fspath(folder), "WAYLAND_DISPLAY": "wayland-1"}
    finally:
        server.terminate()
        server.wait()


def colours(place, environment):
    """How many pixels of each colour the compositor shows."""
    for old in place.settings.glob("wayland-screenshot*"):
        old.unlink()
    subprocess.run(
        ["weston-screenshooter"], env=dict(os.environ, **environment), cwd=place.settings, check=True
    )
    (shot,) = place.settings.glob("wayland-screenshot*")
    pixels = pictures.pixels(shot)
    return lambda colour: sum(pixels[at : at + 3] == bytes(colour) for at in range(0, len(pixels), 3))


def shown(place):
    pictures.make(place.pictures / "a.gif", pictures.BLUE, size="100x50")
    pictures.make(place.pictures / "b.gif", pictures.RED, size="70x40")
    with compositor(place) as environment:
        with place.start("a.gif", prefix=NATIVE, environment=environment) as program:
            program.idle(1)
            equal(program.find("image").name, "Aperçu de a.gif, 100 × 50", "the preview's name")
            until(lambda: colours(place, environment)(pictures.BLUE) == 100 * 50, "the picture on the screen")
            with place.start("b.gif", prefix=NATIVE, environment=environment) as second:
                equal(second.ended(), 0, "exit status of the second start")
            program.idle(2)
            until(lambda: colours(place, environment)(pictures.RED) == 70 * 40, "the next one on the screen")
            (place.settings / "Veltrane.pref").unlink(missing_ok=True)
            program.send(signal.SIGTERM)
            equal(program.ended(), 0, "exit status")
    for name, colour in (("a.png", pictures.BLUE), ("b.png", pictures.RED)):
        equal(tuple(pictures.pixels(place.pictures / name)[:3]), colour, name)
    equal(len(place.preferred()), 3, "lines of settings stored")


def compositor_dies(place):
    """Without a screen nothing can go on: it ends, and what it has written is whole."""
    for number in range(200):
        pictures.make(place.pictures / f"{number:03}.gif", size="500x400")
    with compositor(place) as environment:
        files = sorted(os.listdir(place.pictures))
        program = place.start(*files, prefix=NATIVE, environment=environment)
        until((place.pictures / "000.png").exists, "the first copy")
    with program:
        equal(program.ended() != 0, True, "a bad exit status")
    copies = sorted(place.pictures.glob("*.png"))
    read = subprocess.run(["pngcheck", "-q", *copies], capture_output=True, text=True, check=False)
    equal((read.returncode, read.stdout), (0, ""), "pngcheck on the copies")
    equal(len(os.listdir(place.pictures)), 200 + len(copies), "how many files lie in the folder")


check([("shown and served", shown), ("the compositor dies", compositor_dies)])
