#!/usr/bin/python3
"""Killed while it saves, the program leaves the old copy or the new one: kills.py [--kills N] [ROW...]

Of four kills three fall when a share of the bytes is written, drawn at random, and one at a random moment
between the start and the end of a whole run. When too few of them meet the writing, more follow.
"""

import contextlib
import os
import random
import signal
import sys
import time

import pictures
from table import Overdue, check, equal, names, option, until, wait

SOURCE = "photo.tif"
OLD = b"the older copy"
LEFT_OVER = ".veltrane-"


class Watch:
    """What can be seen from outside of a process that saves into a folder."""

    def __init__(self, process, folder):
        self.process = process
        self.folder = os.fspath(folder)
        self.descriptors = f"/proc/{process.pid}/fd"

    def written(self):
        """The bytes in the file that is being written; None when there is none."""
        with contextlib.suppress(OSError):
            for name in os.listdir(self.descriptors):
                path = f"{self.descriptors}/{name}"
                leads = os.readlink(path)
                unfinished = " (deleted)" in leads or LEFT_OVER in leads
                if leads.startswith(self.folder + "/") and unfinished and os.stat(path).st_size > 0:
                    return os.stat(path).st_size
        return None

    def reach(self, condition):
        """Waits, as closely as can be, until a condition holds."""
        end = time.monotonic() + wait.PATIENCE
        while not condition():
            if self.process.poll() is not None or time.monotonic() > end:
                raise Overdue("the save that was to be watched")

    def stop(self):
        self.process.send_signal(signal.SIGSTOP)
        stat = f"/proc/{self.process.pid}/stat"
        until(lambda: open(stat).read().rpartition(")")[2].split()[0] in "TtZ", "the process to stop")


class Series:
    """The same save, begun and killed again and again."""

    def __init__(self, place, copy):
        self.place = place
        self.source = place.pictures / SOURCE
        self.copy = place.pictures / copy
        self.within = self.before = self.after = self.left_overs = 0
        pictures.noise(self.source, "2000x1500")
        self.source_is = self._about(self.source)

    @staticmethod
    def _about(path):
        about = os.stat(path)
        return pictures.digest(path), about.st_mode, about.st_mtime_ns, about.st_ino

    def whole_run(self):
        """Converts undisturbed: what the copy is to be, its size, and how long that takes."""
        began = time.monotonic()
        with self.place.start(SOURCE) as program:
            watch = Watch(program.process, self.place.pictures)
            watch.reach(lambda: watch.written() is not None)
            first = time.monotonic() - began
            until(lambda: self.copy.read_bytes() != OLD, "the copy")
            self.seconds = (first, time.monotonic() - began)
            program.idle(1)
            equal(program.close(), 0, "exit status")
        self.new = pictures.digest(self.copy)
        self.size = self.copy.stat().st_size
        equal(pictures.complaints(self.copy), "", "what a strict reader dislikes")
        equal(self.found(), sorted([SOURCE, self.copy.name]), "the folder")
        equal(self._about(self.source), self.source_is, "the source")

    def found(self):
        return [os.fsdecode(name) for name in names(self.place.pictures)]

    def renew(self):
        """An older copy, as it was before."""
        self.copy.write_bytes(OLD)
        self.old_is = self._about(self.copy)

    def kill(self, number):
        self.renew()
        before = self._left_over()
        with self.place.start(SOURCE) as program:
            watch = Watch(program.process, self.place.pictures)
            if number % 4 == 3:
                first, last = self.seconds
                end = time.monotonic() + random.uniform(first * 0.8, last * 1.1)
                watch.reach(lambda: time.monotonic() > end)
            else:
                share = random.randrange(1, self.size)
                watch.reach(lambda: (watch.written() or 0) >= share or self.copy.stat().st_size == self.size)
            watch.stop()
            written = watch.written()
            program.process.kill()
            program.process.wait()
        self._judge(written, before)

    def _judge(self, written, before):
        equal(self._about(self.source), self.source_is, "the source")
        now = self._about(self.copy)
        equal(now == self.old_is or now[0] == self.new, True, "the old copy or the new one, whole")
        self.within += written is not None and written < self.size
        self.before += written is None and now == self.old_is
        left = self._left_over()
        self.left_overs += left is not None
        if written is not None and left is not None:
            equal(left != before, True, "the left-over of a save before is gone")
        others = [name for name in self.found() if not name.startswith(LEFT_OVER)]
        equal(others, sorted([SOURCE, self.copy.name]), "the folder")

    def _left_over(self):
        """The node of the one name that a kill may leave; None without one."""
        left = [name for name in self.found() if name.startswith(LEFT_OVER)]
        equal(len(left) <= 1, True, f"one name at most is left ({left})")
        return os.stat(self.place.pictures / left[0]).st_ino if left else None


def killed(copy, settings, kills):
    def row(place):
        place.prefer(settings)
        series = Series(place, copy)
        series.renew()
        series.whole_run()
        number = 0
        while number < kills or (series.within * 2 < kills and number < 5 * kills):
            series.kill(number)
            number += 1
        # The next save takes away what the last kill may have left.
        series.renew()
        series.whole_run()
        late = number - series.within - series.before
        print(
            f"        {number} kills: {series.within} between the first and the last write, "
            f"{series.before} before, {late} after; {series.left_overs} left a name",
            flush=True,
        )
        equal(series.within * 2 >= kills, True, f"enough kills met the writing ({series.within})")

    return row


KILLS = int(option("--kills", 6))
check(
    [
        ("killed in PNG saves", killed(SOURCE + ".png", "ConversionPNG=OK\n", KILLS)),
        (
            "killed in JPEG saves",
            killed(SOURCE + ".jpg", "ConversionPNG=ko\nConversionJPG=OK\nTauxJPG=100\n", KILLS),
        ),
    ]
)
