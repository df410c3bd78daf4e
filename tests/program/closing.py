#!/usr/bin/python3
"""Whatever ends the program in the middle of a drop, no half of a file is left.

closing.py [--all] [--random N] [ROW...]: with --all it is closed at ten moments, without at three of them;
besides at N random moments, in random ways.
"""

import contextlib
import random
import signal
import subprocess
import sys
import time
from pathlib import Path

import pictures
from drags import Drag, uri_list
from lease import Lease
from table import check, equal, names, option

FILES = 300
MOMENTS = (1, 7, 20, 45, 80, 120, 160, 200, 250, 290)
USUAL = (1, 45, 290)
# A program that is started in the background by some shells ignores what the keyboard sends.
UNDER_A_SHELL = ("env", "--default-signal=INT,HUP")
SETTINGS = ["ConversionJPG=ko", "ConversionPNG=OK", "TauxJPG=42"]


def make_all(place):
    files = [place.pictures / f"{number:03}.gif" for number in range(FILES)]
    for file in files:
        pictures.make(file, size="500x400")
    return files


def drop_all(place, program, files):
    with Drag(place, uri_list(files)) as drag:
        drag.drop_on(program)


def whole(place, files, source):
    """Every copy is whole and all are one, every source is what it was, and nothing else lies there."""
    copies = [file.with_suffix(".png") for file in files if file.with_suffix(".png").exists()]
    equal({pictures.digest(file) for file in files}, {source}, "the sources")
    if not copies:
        return 0
    read = subprocess.run(["pngcheck", "-q", *copies], capture_output=True, text=True, check=False)
    equal((read.returncode, read.stdout), (0, ""), "pngcheck on the copies")
    equal({pictures.digest(file) for file in copies}, {pictures.digest(copies[0])}, "the copies")
    equal(pictures.pixels(copies[0]), pictures.pixels(files[0]), "the copies' pixels")
    equal(copies, [file.with_suffix(".png") for file in files[: len(copies)]], "the copies, in order")
    equal(len(names(place.pictures)), len(files) + len(copies), "how many files lie in the folder")
    return len(copies)


def ended_at(moment, end):
    def row(place):
        place.prefer("\n".join(SETTINGS) + "\n")
        with place.start(prefix=UNDER_A_SHELL) as program:
            program.idle(0)
            files = make_all(place)
            source = pictures.digest(files[0])
            with Lease(files[moment]) as lease:
                drop_all(place, program, files)
                lease.wait()
                (place.settings / "Veltrane.pref").unlink()
                end(program)
            equal(program.ended(), 0, "exit status")
        copies = ended_well(place, files, source)
        equal(moment <= copies < FILES, True, f"ended in the middle ({copies} copies)")

    return row


def ended_well(place, files, source):
    """The copies are whole and the settings stored; how many copies there are."""
    equal(sorted(place.preferred()), SETTINGS, "the settings, stored anew")
    equal(names(place.settings), [b"Veltrane.pref", b"offered"], "the folder of settings")
    return whole(place, files, source)


@contextlib.contextmanager
def session():
    """A session for the program: its environment, and what ends it."""
    manager = subprocess.Popen(
        [sys.executable, Path(__file__).with_name("session.py")],
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        text=True,
    )
    try:
        address = manager.stdout.readline().strip()

        def log_out(_program):
            equal(manager.stdout.readline().strip(), "registered", "the program's word to the manager")
            print("logout", file=manager.stdin, flush=True)

        yield {"SESSION_MANAGER": address}, log_out
    finally:
        manager.stdin.close()
        manager.wait()


def logged_out(moment):
    def row(place):
        place.prefer("\n".join(SETTINGS) + "\n")
        with session() as (environment, log_out), place.start(environment=environment) as program:
            program.idle(0)
            files = make_all(place)
            source = pictures.digest(files[0])
            with Lease(files[moment]) as lease:
                drop_all(place, program, files)
                lease.wait()
                (place.settings / "Veltrane.pref").unlink()
                log_out(program)
            equal(program.ended(), 0, "exit status")
        copies = ended_well(place, files, source)
        equal(moment <= copies < FILES, True, f"ended in the middle ({copies} copies)")

    return row


def at_random(times):
    """Ended at random moments of a drop, one way or another; also before the first copy and after the last."""

    def row(place):
        seen = []
        for number in range(times):
            folder = place.pictures / str(number)
            seen.append(ended_somewhere(place.inside(folder), number))
        middle = sum(0 < copies < FILES for copies in seen)
        print(
            f"        {times} closings: {middle} in the middle of a batch, after {min(seen)} to {max(seen)} copies",
            flush=True,
        )

    return row


def ended_somewhere(place, number):
    place.prefer("\n".join(SETTINGS) + "\n")
    ways = (closed, sent(signal.SIGTERM), None)
    with session() as (environment, log_out), place.start(environment=environment) as program:
        program.idle(0)
        files = make_all(place)
        drop_all(place, program, files)
        source = pictures.digest(files[0])
        (place.settings / "Veltrane.pref").unlink()
        time.sleep(random.uniform(0, 2))
        (ways[number % len(ways)] or log_out)(program)
        equal(program.ended(), 0, "exit status")
    return ended_well(place, files, source)


def closed(program):
    program.ask_to_close()


def sent(number):
    return lambda program: program.send(number)


def twice(program):
    program.send(signal.SIGTERM)
    program.ask_to_close()
    program.send(signal.SIGINT)


every = "--all" in sys.argv
times = int(option("--random", 0))
sys.argv = [argument for argument in sys.argv if argument != "--all"]

check(
    [
        *[
            (f"closed after copy {moment}", ended_at(moment, closed))
            for moment in (MOMENTS if every else USUAL)
        ],
        ("ended by SIGTERM in the middle", ended_at(20, sent(signal.SIGTERM))),
        ("ended by SIGINT in the middle", ended_at(20, sent(signal.SIGINT))),
        ("ended by SIGHUP in the middle", ended_at(20, sent(signal.SIGHUP))),
        ("asked to end again and again", ended_at(20, twice)),
        ("logged out in the middle", logged_out(20)),
        *([("ended at random moments", at_random(times))] if times else []),
    ]
)
