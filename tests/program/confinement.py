#!/usr/bin/python3
"""What the program has given up once it runs, and that nobody misses it."""

import os
import re
import signal
import subprocess
from pathlib import Path

import pictures
from drags import Drag, uri_list
from gi.repository import Gio, GLib
from table import Skipped, both_ticked, check, equal, names, until


LANDLOCK = "landlock_create_ruleset,landlock_restrict_self"


def every_thread(place):
    if "Seccomp:" not in Path("/proc/self/status").read_text():
        raise Skipped("a kernel without filters")
    pictures.make(place.pictures / "a.gif")
    with place.start("a.gif") as program:
        program.idle(1)
        for status in Path(f"/proc/{program.process.pid}/task").glob("*/status"):
            said = dict(re.findall(r"^(\w+):\s*(.*)$", status.read_text(), re.M))
            equal((said["Seccomp"], said["NoNewPrivs"]), ("2", "1"), f"filter of thread {said['Name']}")
        equal(program.close(), 0, "exit status")


def convert(place, program):
    """Documents, a drop, a message box, and the close."""
    program.idle(2)
    program.answer()
    with Drag(place, uri_list([place.pictures / "c.gif"])) as drag:
        drag.drop_on(program)
    program.idle(3)
    equal(program.close(), 0, "exit status")
    copies = [name + suffix for name in "abc" for suffix in (".jpg", ".png")]
    equal(set(copies) <= {name.decode() for name in names(place.pictures)}, True, "all copies are there")


def traced(place):
    """All calls of a full run that have to do with processes or sockets."""
    log = place.settings / "calls"
    trace = ["strace", "-D", "-f", "-q", "-e", f"trace=network,process,{LANDLOCK}", "-o", str(log)]
    tried = subprocess.run([*trace[:-2], "-o", "/dev/null", "true"], capture_output=True, check=False)
    if tried.returncode != 0:
        raise Skipped("no tracing here")
    for name in "abc":
        pictures.make(place.pictures / f"{name}.gif")
    (place.pictures / "bad.gif").write_text("no picture")
    both_ticked(place)
    with place.start("a.gif", "b.gif", "bad.gif", prefix=trace) as program:
        convert(place, program)
        pid = program.process.pid
        until(lambda: re.search(rf"^{pid} +\+\+\+ exited", log.read_text(), re.M), "the tracer's last word")
    return log.read_text()


def nothing_started(place):
    calls = traced(place)
    made = re.findall(r"^\d+ +((?:clone3?|v?fork|execve|execveat)\(.*)", calls, re.M)
    equal(len(made) > 2, True, "the tracer sees the start and the threads")
    equal([call for call in made[1:] if "CLONE_THREAD" not in call], [], "processes and programs started")
    families = set(re.findall(r" socket(?:pair)?\((\w+)", calls))
    equal(families, {"AF_UNIX"}, "families of sockets asked for")
    for socket in sorted(set(re.findall(r" connect\(\d+, (\{.*?\})", calls))):
        print("       ", socket)


def domain_first(place):
    calls = traced(place)
    version = re.search(r"landlock_create_ruleset\(NULL, .*\) += (-?\d+)", calls)
    if int(version[1]) < 1:
        raise Skipped("a kernel without Landlock")
    equal(bool(re.search(r"landlock_restrict_self\(.*\) += 0$", calls, re.M)), True, "the domain is entered")
    order = re.findall(r"^\d+ +(landlock_restrict_self|clone)3?\(", calls, re.M)
    equal(order[:2], ["landlock_restrict_self", "clone"], "the domain, then the threads")


def call(bus, member, wanted, *arguments):
    """Asks a bus itself."""
    name, path = "org.freedesktop.DBus", "/org/freedesktop/DBus"
    given = GLib.Variant(wanted, arguments) if arguments else None
    return bus.call_sync(name, path, name, member, given, None, 0, 10000, None).unpack()[0]


def processes(bus):
    return {call(bus, "GetConnectionUnixProcessID", "(s)", name) for name in call(bus, "ListNames", "")}


def late_accessibility(place):
    """The last row: this process's own view of the screen ends with the bus that is taken away."""
    service = "org.a11y.Bus"
    session = Gio.bus_get_sync(Gio.BusType.SESSION)
    os.kill(call(session, "GetConnectionUnixProcessID", "(s)", service), signal.SIGTERM)
    until(lambda: not call(session, "NameHasOwner", "(s)", service), "the end of the service")
    subprocess.run(["xprop", "-root", "-remove", "AT_SPI_BUS"], check=True)
    with place.start() as program:
        program.shown()
        call(session, "StartServiceByName", "(su)", service, 0)
        (address,) = session.call_sync(
            service, "/org/a11y/bus", service, "GetAddress", None, None, 0, 10000, None
        ).unpack()
        kind = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        bus = Gio.DBusConnection.new_for_address_sync(address, kind, None, None)
        until(lambda: program.process.pid in processes(bus), "the program on the accessibility bus")
        equal(program.close(), 0, "exit status")


check(
    [
        ("every thread has given up what it does not need", every_thread),
        ("a full run starts nothing and opens local sockets only", nothing_started),
        ("every thread is started inside the domain", domain_first),
        ("accessibility that is started later is answered", late_accessibility),
    ]
)
