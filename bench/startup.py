#!/usr/bin/env python3
"""Start-up: the time from the start of the process until its window is on the screen, against a bare window
of the same toolkit, in turns, under a virtual screen with a window manager.

    bench/startup.py build/release/Veltrane build/bench/bench/bare_window [RUNS]
"""

import os
import queue
import shutil
import statistics
import subprocess
import sys
import tempfile
import threading
import time

DISPLAY = ":93"


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


def one_start(command, environment, maps):
    while not maps.empty():
        maps.get()
    begun = time.monotonic()
    program = subprocess.Popen(command, env=environment, stderr=subprocess.DEVNULL)
    shown = maps.get(timeout=60)
    program.terminate()
    program.wait()
    return (shown - begun) * 1000


def main():
    ours, bare = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    runs = int(sys.argv[3]) if len(sys.argv) > 3 else 20
    settings = tempfile.mkdtemp(prefix="veltrane-bench-")
    environment = dict(os.environ, DISPLAY=DISPLAY, XDG_CONFIG_HOME=settings, XDG_RUNTIME_DIR=settings,
                       QT_QPA_PLATFORM="xcb")
    helpers = [subprocess.Popen(["Xvfb", DISPLAY, "-screen", "0", "1280x1024x24"], stderr=subprocess.DEVNULL)]
    try:
        while subprocess.run(["xdpyinfo"], env=environment, capture_output=True).returncode != 0:
            time.sleep(0.02)
        helpers.append(subprocess.Popen(["openbox"], env=environment, stderr=subprocess.DEVNULL))
        while b"_NET_SUPPORTING_WM_CHECK(WINDOW)" not in subprocess.run(
                ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=environment, capture_output=True).stdout:
            time.sleep(0.02)
        watcher, maps = watch_maps(environment)
        helpers.append(watcher)
        for command in (ours, bare):
            one_start([command], environment, maps)  # libraries and fonts come into the cache
        pairs = [(one_start([ours], environment, maps), one_start([bare], environment, maps)) for _ in range(runs)]
    finally:
        for helper in reversed(helpers):
            helper.terminate()
            helper.wait()
        shutil.rmtree(settings, ignore_errors=True)
    print(f"ours {statistics.median(p[0] for p in pairs):.1f} ms, bare {statistics.median(p[1] for p in pairs):.1f} ms, "
          f"ratio {statistics.median(p[0] / p[1] for p in pairs):.2f} (median of {runs} pairs)")


if __name__ == "__main__":
    main()
