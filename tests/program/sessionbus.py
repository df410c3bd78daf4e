#!/usr/bin/python3
"""The program and the session bus: with one, without one, started by one, and more than one screen on one."""

import os
import signal
import subprocess

from gi.repository import GLib

import bus
import pictures
from table import PROGRAM, check, equal, until


def make(place, *files, size="120x80"):
    for file in files:
        pictures.make(place.pictures / file, size=size)


def address(place, file):
    return (place.pictures / file).as_uri()


def copied(place, *files):
    for file in files:
        until((place.pictures / file).with_suffix(".png").exists, f"the copy of {file}")


def no_bus(place):
    """Each start has its window; and no bus is started for the sake of it."""
    make(place, "a.gif", "b.gif")
    launch = place.settings / "dbus-launch"
    launch.write_text(f"#!/bin/sh\ntouch {place.settings}/launched\n")
    launch.chmod(0o755)
    without = ("env", "-u", "DBUS_SESSION_BUS_ADDRESS")
    alone = {"XDG_RUNTIME_DIR": os.fspath(place.settings), "PATH": f"{place.settings}:{os.environ['PATH']}"}
    place.settings.chmod(0o700)
    with place.start("a.gif", prefix=without, environment=alone) as first:
        copied(place, "a.gif")
        with place.start("b.gif", prefix=without, environment=alone) as second:
            copied(place, "b.gif")
            equal(bus.windows(), 2, "windows")
            equal(second.close(), 0, "exit status of the second")
        equal(first.close(), 0, "exit status of the first")
    equal((place.settings / "launched").exists(), False, "a bus was started")


def bus_dies(place):
    files = [f"{number}.gif" for number in range(40)]
    make(place, *files, size="500x400")
    with bus.Bus(place, "/bin/false") as own:
        with place.start(*files, environment=own.environment) as program:
            copied(place, files[0])
            own.end()
            copied(place, files[-1])
            equal(program.close(), 0, "exit status")
    equal((place.settings / "Veltrane.pref").exists(), True, "the settings are stored")


def started_by_the_bus(place):
    """Twice: what the bus starts takes the first call as well as the next, and ends like any other."""
    make(place, "a.gif", "b.gif", "c.gif")
    with bus.Bus(place, PROGRAM) as own:
        for first, second in (("a.gif", "b.gif"), ("c.gif", None)):
            equal(bus.opened(address(place, first), environment=own.environment), "done", "the first call")
            copied(place, first)
            until(lambda: bus.windows() == 1, "the window")
            if second:
                answer = bus.opened(address(place, second), environment=own.environment)
                equal(answer, "done", "the second call")
                copied(place, second)
                equal(bus.windows(), 1, "windows after another call")
            bus.close_window()
            until(lambda: own.owner() == 0, "the end of the program")
        answer = bus.call("Activate", "(a{sv})", {}, environment=own.environment)
        equal(answer, "done", "started without a file")
        until(lambda: bus.windows() == 1, "the window")
        bus.close_window()


def sent_on_while_ending(place):
    """A desktop asks only once: what comes too late for the one that ends is for the next."""
    make(place, "a.gif")
    with bus.Bus(place, PROGRAM) as own:
        equal(bus.call("Activate", "(a{sv})", {}, environment=own.environment), "done", "the start")
        until(lambda: bus.windows() == 1, "the window")
        first = own.owner()
        os.kill(first, signal.SIGSTOP)
        os.kill(first, signal.SIGTERM)
        with bus.Calls(own.environment) as calls:
            asked = GLib.Variant("(asa{sv})", ([address(place, "a.gif")], {}))
            late = bus.Calling("Open", asked, own.environment)
            calls.wait_for("Open")
            os.kill(first, signal.SIGCONT)
            late.join()
        equal(late.answer, "done", "the answer")
        copied(place, "a.gif")
        equal(own.owner() not in (0, first), True, "another process has the name")
        bus.close_window()
        until(lambda: own.owner() == 0, "the end of the program")


class OtherScreen:
    """A second X server, from `with` to its end; its name is what it is entered as."""

    def __enter__(self):
        self.server = subprocess.Popen(
            ["Xvfb", "-screen", "0", "800x700x24", "-nolisten", "tcp", "-noreset", "-displayfd", "1"],
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            text=True,
        )
        return ":" + self.server.stdout.readline().strip()

    def __exit__(self, *_):
        self.server.kill()
        self.server.communicate()


def other_screen(place):
    """Whoever sits before another screen would not see the window; one without a screen has nowhere else."""
    make(place, "a.gif", "b.gif", "c.gif")
    with place.start() as first, OtherScreen() as name:
        first.idle(0)
        with place.start("a.gif", environment={"DISPLAY": name}) as other:
            other.idle(1)
            equal(first.taken(), 0, "files taken in on the first screen")
            other.terminate()
            equal(other.ended(), 0, "exit status on the other screen")
        with place.start("b.gif", environment={"DISPLAY": os.environ["DISPLAY"] + ".0"}) as same:
            equal(same.ended(), 0, "exit status on the same screen")
        first.idle(1)
        with place.start("c.gif", prefix=("env", "-u", "DISPLAY")) as blind:
            equal(blind.ended(), 0, "exit status without a screen")
        first.idle(2)
        equal(first.close(), 0, "exit status of the first")


def strange_calls(place):
    """Nothing that others say on the bus harms the program."""
    make(place, "a.gif")
    with place.start() as program:
        program.idle(0)
        for method, kind, *arguments in [
            ("Open", "(s)", "file:///a"),
            ("Open", "(as)", ["file:///a"]),
            ("Open", "(asa{ss})", ["file:///a"], {}),
            ("Open", "(aya{sv})", [1, 2], {}),
            ("Activate", "()"),
            ("Activate", "(s)", "now"),
            ("ActivateAction", "(sava{sv})", "quit", [], {}),
            ("Quit", "()"),
        ]:
            answer = bus.call(method, kind, *arguments)
            equal(answer.startswith("org.freedesktop.DBus.Error.Unknown"), True, f"{method} {kind}: {answer}")
        odd = {"veltrane-screens": GLib.Variant("i", 5)}
        equal(bus.call("Open", "(asa{sv})", [], odd), "done", "odd data")
        equal(bus.opened("file:///no/such.gif", address(place, "a.gif")), "done", "a file that is gone")
        program.idle(1)
        equal(bus.opened("sftp://host/<b>x.gif"), "done", "an address elsewhere")
        message = program.answer()
        equal("« sftp://host/<b>x.gif »" in message, True, f"the address in the message ({message})")
        equal(program.close(), 0, "exit status")


check(
    [
        ("without a bus", no_bus),
        ("the bus dies", bus_dies),
        ("started by the bus", started_by_the_bus),
        ("a call that comes too late is sent on", sent_on_while_ending),
        ("another screen on the same bus", other_screen),
        ("strange calls", strange_calls),
    ]
)
