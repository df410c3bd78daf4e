"""A process and what it took."""

import dataclasses
import os
import subprocess
import time


@dataclasses.dataclass
class Taken:
    """What one or several processes took together."""

    cpu: float = 0.0  # seconds, user and system
    wall: float = 0.0  # seconds
    peak: int = 0  # resident, KiB

    def __add__(self, other):
        return Taken(self.cpu + other.cpu, self.wall + other.wall, max(self.peak, other.peak))

    def less(self, start, times=1):
        """Without the start-up of so many processes."""
        return Taken(self.cpu - times * start.cpu, self.wall - times * start.wall, self.peak)


class Process:
    """A process under way; its end tells what it took."""

    def __init__(self, command, environment, folder=None):
        self.command = [os.fspath(part) for part in command]
        self.begun = time.monotonic()
        self.popen = subprocess.Popen(
            self.command,
            env=environment,
            cwd=folder,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        self.pid = self.popen.pid

    def elapsed(self):
        return time.monotonic() - self.begun

    def has_ended(self):
        """Whether it has ended; what it took is still told by `ended`."""
        return os.waitid(os.P_PID, self.pid, os.WEXITED | os.WNOHANG | os.WNOWAIT) is not None

    def ended(self):
        """Waits for the end, which must be a good one."""
        _, status, usage = os.wait4(self.pid, 0)
        wall = self.elapsed()
        self.popen.returncode = os.waitstatus_to_exitcode(status)
        if self.popen.returncode != 0:
            raise RuntimeError(f"status {self.popen.returncode}: {' '.join(self.command)[:300]}")
        return Taken(usage.ru_utime + usage.ru_stime, wall, usage.ru_maxrss)


def finish(command, environment, folder=None):
    """Runs a command to its end, in a folder."""
    return Process(command, environment, folder).ended()
