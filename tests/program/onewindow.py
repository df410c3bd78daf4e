#!/usr/bin/python3
"""A second start hands its documents to the window that is there, raises it and ends; and no file is lost."""

import os
import signal
import subprocess
import tempfile

import bus
import pictures
from table import check, equal, names, until


def make(place, *files, size="120x80"):
    for file in files:
        pictures.make(os.path.join(os.fsencode(place.pictures), os.fsencode(file)), kind="gif", size=size)


def copied(place, *files):
    """Waits for the copies; nothing else lies there."""
    files = [os.fsencode(file) for file in files]
    wanted = sorted(files + [file.removesuffix(b".gif") + b".png" for file in files])
    until(lambda: names(place.pictures) == wanted, f"the copies (there: {names(place.pictures)})")


def handed_over(place, *documents, **options):
    """A start that finds the window there."""
    with place.start(*documents, **options) as second:
        equal(second.ended(), 0, "exit status of the second start")


def files_of_every_kind(place):
    """A relative name from another folder, an address, names that are no text or hold an address's signs."""
    odd = [b"caf\xe9 \xff\n.gif", b"100%41#?&;[*].gif", "é 写真.gif".encode(), b"file:x.gif"]
    (place.pictures / "inner").mkdir()
    make(place, "a.gif", "b.gif", *odd)
    with place.start("a.gif") as program:
        program.idle(1)
        beside = [b"../" + name for name in (b"b.gif", *odd[:3])]
        handed_over(place, *beside, cwd=place.pictures / "inner")
        program.idle(5)
        handed_over(place, odd[3])
        program.idle(6)
        equal(program.title(), "Veltrane V2 : file:x.gif", "title")
        make(place, "d e.gif")
        handed_over(place, (place.pictures / "d e.gif").as_uri(), "gone.gif")
        program.idle(7)
        equal(program.message(), None, "a message")
        equal(program.close(), 0, "exit status")
    (place.pictures / "inner").rmdir()
    copied(place, "a.gif", "b.gif", "d e.gif", *odd)


def active(program):
    shown = subprocess.run(["xdotool", "getactivewindow"], capture_output=True, text=True, check=False)
    return shown.stdout.strip() == str(program.window())


def comes_to_the_front(hide):
    """Another program has the focus, or the window is out of sight; a second start brings the window."""

    def row(place):
        with place.start() as program:
            program.activate()
            other = subprocess.Popen(["xev"], stdout=subprocess.DEVNULL)
            try:
                until(lambda: not active(program), "the focus to go to the other window")
                hide(program)
                handed_over(place)
                until(lambda: active(program), "the focus to come back")
                equal(program.close(), 0, "exit status")
            finally:
                other.kill()
                other.wait()

    return row


def minimise(program):
    window = str(program.window())
    subprocess.run(["xdotool", "windowminimize", window], check=True)
    until(lambda: program.window() is None, "the window to be out of sight")


def startup_ends(place):
    """The desktop, which shows a busy pointer for each start, hears of the end of both."""
    with tempfile.TemporaryFile() as log:
        watcher = subprocess.Popen(["xev", "-root", "-event", "property"], stdout=log)

        def heard():
            return os.pread(log.fileno(), 1 << 20, 0).count(b"(_NET_STARTUP_INFO_BEGIN)")

        try:
            until(lambda: os.fstat(log.fileno()).st_size > 0 or touch_root(), "the watcher to listen")
            with place.start(environment={"DESKTOP_STARTUP_ID": "first_TIME1"}) as program:
                program.idle(0)
                until(lambda: heard() == 1, "the end of the first start")
                handed_over(place, environment={"DESKTOP_STARTUP_ID": "second_TIME2"})
                until(lambda: heard() == 2, "the end of the second start")
        finally:
            watcher.kill()
            watcher.wait()


def touch_root():
    subprocess.run(["xprop", "-root", "-f", "_TRIED", "8s", "-set", "_TRIED", "x"], check=True)


def in_the_middle_of_a_batch(place):
    batch = [f"{number:03}.gif" for number in range(40)]
    make(place, *batch, "late.gif", size="500x400")
    with place.start(*batch) as program:
        until((place.pictures / "000.png").exists, "the first copy")
        program.send(signal.SIGSTOP)
        with bus.Calls() as calls, place.start("late.gif") as second:
            calls.wait_for("Open")
            program.send(signal.SIGCONT)
            equal(second.ended(), 0, "exit status of the second start")
        equal((place.pictures / "late.png").exists(), False, "it waits its turn")
        program.idle(41)
        equal(program.title(), "Veltrane V2 : late.gif", "title")
        equal(program.close(), 0, "exit status")


def while_a_box_is_open(place):
    (place.pictures / "bad.gif").write_bytes(b"GIF89a no picture")
    with place.start("bad.gif") as program:
        until(program.message, "the message")
        make(place, "late.gif")
        handed_over(place, "late.gif")
        equal(program.taken(), 0, "files taken in while the message stands")
        program.answer()
        program.idle(1)
        equal(program.close(), 0, "exit status")


def many_at_once(place):
    """Exactly one of them has a window, and it takes what all were given."""
    files = [f"{number}.gif" for number in range(6)]
    make(place, *files)
    starts = [place.start(file) for file in files]
    until(lambda: sum(start.running for start in starts) == 1, "all but one to end")
    (first,) = [start for start in starts if start.running]
    equal([start.process.returncode for start in starts if start is not first], [0] * 5, "exit statuses")
    with first:
        first.idle(6)
        equal(first.close(), 0, "exit status")
    copied(place, *files)


def closing(place):
    """Whatever a window was told before it was told to close, what comes behind that is not for it."""
    place.prefer("ConversionJPG=ko\nConversionPNG=OK\nTauxJPG=11\n")
    make(place, "a.gif")
    with place.start() as first:
        first.activate()
        first.keys("Tab", "Right")
        until(lambda: "Qualité (12%) : " in first.labels(), "the changed quality")
        first.send(signal.SIGSTOP)
        first.terminate()
        with bus.Calls() as calls, place.start("a.gif") as second:
            calls.wait_for("Open")
            first.send(signal.SIGCONT)
            equal(first.ended(), 0, "exit status of the first")
            second.idle(1)
            equal("Qualité (12%) : " in second.labels(), True, "the first one's settings were stored before")
            handed_over(place, "a.gif")
            second.idle(2)
            equal(second.close(), 0, "exit status of the second")


def hung(place):
    """A window that does not answer keeps nobody from their file; come to itself, it leaves that alone."""
    make(place, "a.gif", "b.gif")
    with place.start("a.gif") as first:
        first.idle(1)
        first.send(signal.SIGSTOP)
        with place.start("b.gif") as second:
            second.idle(1)
            first.send(signal.SIGCONT)
            equal(first.close(), 0, "exit status of the first")
            handed_over(place, "a.gif")
            second.idle(2)
            equal(second.close(), 0, "exit status of the second")


def hung_for_a_while(place):
    make(place, "a.gif", "b.gif", "c.gif")
    with place.start("a.gif") as first:
        first.idle(1)
        first.send(signal.SIGSTOP)
        with place.start("b.gif") as second:
            second.idle(1)
            equal(second.close(), 0, "exit status of the second")
        first.send(signal.SIGCONT)
        handed_over(place, "c.gif")
        first.idle(2)
        equal(first.title(), "Veltrane V2 : c.gif", "title")


def killed(place):
    """The first one dies with the call in its hands."""
    make(place, "a.gif")
    with place.start() as first:
        first.idle(0)
        first.send(signal.SIGSTOP)
        with bus.Calls() as calls, place.start("a.gif") as second:
            calls.wait_for("Open")
            first.send(signal.SIGKILL)
            second.idle(1)


check(
    [
        ("files of every kind of name", files_of_every_kind),
        ("the window comes to the front", comes_to_the_front(lambda program: None)),
        ("the window comes back from the task bar", comes_to_the_front(minimise)),
        ("the desktop hears that the start has ended", startup_ends),
        ("in the middle of a batch", in_the_middle_of_a_batch),
        ("while a box is open", while_a_box_is_open),
        ("many starts at once", many_at_once),
        ("the first is being closed", closing),
        ("the first dies", killed),
        ("the first hangs", hung),
        ("the first hangs for a while", hung_for_a_while),
    ]
)
