"""Halts the program at a file, however fast it is, for as long as a test needs."""

import fcntl
import os
import signal

from table import until


class Lease:
    """The system's lease on a file: who opens it waits until the lease has ended.

    The system itself ends it after /proc/sys/fs/lease-break-time seconds, 45 by default.
    """

    def __init__(self, path):
        # The system's word that somebody waits would end this process; it is asked for instead.
        signal.signal(signal.SIGIO, signal.SIG_IGN)
        self.file = os.open(path, os.O_RDONLY)
        fcntl.fcntl(self.file, fcntl.F_SETLEASE, fcntl.F_WRLCK)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.file)

    def wait(self):
        """Waits until somebody stands at the file."""
        until(lambda: fcntl.fcntl(self.file, fcntl.F_GETLEASE) != fcntl.F_WRLCK, "somebody to open the file")
