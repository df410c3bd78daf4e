#!/usr/bin/env python3
"""Start-up: the time from the start of the process until its window is on the screen, against a bare window
of the same toolkit, empty and with a line of text, in turns, under a virtual screen with a window manager.

    bench/startup.py build/release/Veltrane build/bench/bench/bare_window [RUNS]
"""

import contextlib
import os
import queue
import statistics
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.append(str(Path(__file__).resolve().parent.parent / "tools"))

from desk.screen import Screen  # noqa: E402

def watch_maps(environment):
    """A queue that gets the moment of each window that appears on the root window."""
    maps = queue.Queue()
    watcher = subprocess.Popen(["xev", "-root", "-event", "substructure"], stdout=subprocess.PIPE, env=environment)

    def read():
        for line in watcher.stdout:
            if line.startswith(b"MapNotify event"):
                maps.put(time.monotonic())

    threading.Thread(target=read, daemon=True).start()
    return watcher, maps


def one_start(command, environment, maps, patience=60):
    """Milliseconds to the shown window; raises queue.Empty when none is seen."""
    while not maps.empty():
        maps.get()
    begun = time.monotonic()
    program = subprocess.Popen(command, env=environment, stderr=subprocess.DEVNULL)
    try:
        shown = maps.get(timeout=patience)
    finally:
        program.terminate()
        program.wait()
    return (shown - begun) * 1000


def first_start(command, environment, maps):
    """Brings libraries and fonts into the cache; and the watcher may not yet look when the first window comes."""
    for patience in (2, 5, 60):
        with contextlib.suppress(queue.Empty):
            return one_start(command, environment, maps, patience)
    raise RuntimeError(f"no window of {command}")


def quiet(environment, settings):
    """The screen's environment without its screen reader: on most desks none listens."""
    listened = {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "NO_AT_BRIDGE"}
    kept = {name: value for name, value in environment.items() if name not in listened}
    return dict(kept, XDG_CONFIG_HOME=settings)


def measured(commands, runs, environment):
    """The milliseconds of each run of each command, which take turns."""
    watcher, maps = watch_maps(environment)
    try:
        for command in commands:
            first_start(command, environment, maps)
        return [[one_start(command, environment, maps) for command in commands] for _ in range(runs)]
    finally:
        watcher.terminate()
        watcher.wait()


def main():
    ours, bare = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    runs = int(sys.argv[3]) if len(sys.argv) > 3 else 20
    with Screen() as screen, tempfile.TemporaryDirectory(prefix="veltrane-bench-") as settings:
        times = measured([[ours], [bare], [bare, "bare"]], runs, quiet(screen.environment, settings))
    middle = [statistics.median(column) for column in zip(*times)]
    ratio = [statistics.median(time[0] / time[peer] for time in times) for peer in (1, 2)]
    print(
        f"ours {middle[0]:.1f} ms, bare {middle[1]:.1f} ms, with a line of text {middle[2]:.1f} ms, "
        f"ratio {ratio[0]:.2f}, with a line of text {ratio[1]:.2f} (median of {runs} rounds)"
    )


if __name__ == "__main__":
    main()
