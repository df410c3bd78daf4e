"""Real drags: a sender of our own, and the pointer that carries from it to the window."""

import os
import subprocess
import sys
import threading
from pathlib import Path

from table import until

SOURCE = Path(__file__).resolve().parent / "dragsource.py"


def pointer(*command):
    subprocess.run(["xdotool", *map(str, command)], check=True)


def uri_list(paths):
    """What a file manager offers for files."""
    return b"".join(Path(path).as_uri().encode() + b"\r\n" for path in paths)


class Drag:
    """One drag of some bytes of text/uri-list, from the press of the button to the sender's release."""

    def __init__(self, place, offered):
        file = place.settings / "offered"
        file.write_bytes(offered)
        self.told = []
        self.process = subprocess.Popen([sys.executable, SOURCE, file], stdout=subprocess.PIPE, text=True)
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            self.told.append(line.strip())

    def __enter__(self):
        self.heard("ready")
        return self

    def __exit__(self, *_):
        pointer("mouseup", 1)
        self.process.kill()
        self.process.wait()
        self.reader.join()

    def heard(self, word):
        until(lambda: word in self.told, f"the sender to tell {word!r} (told: {self.told})")

    def carry_over(self, program, scale=1):
        """Presses, moves, and stays over the middle of the window, which a screen of that scale shows."""
        left, top, width, height = until(lambda: program.find("frame"), "the window").box
        pointer("mousemove", 50, 50, "mousedown", 1)
        for step in range(1, 6):
            pointer("mousemove", 50 + 8 * step, 50 + 8 * step)
        self.heard("begun")
        self.middle = round(scale * (left + width // 2)), round(scale * (top + height // 2))
        pointer("mousemove", *self.middle)
        self.jiggle(program)

    def jiggle(self, program):
        """Moves on the spot, and lets the window answer each move."""
        for step in (1, 2, 3, 2, 1, 0):
            pointer("mousemove", self.middle[0] + step, self.middle[1] + step)
            until(program.labels, "an answer of the window")

    def release(self):
        pointer("mouseup", 1)
        self.heard("ended")

    def drop_on(self, program, scale=1):
        """The whole way, for what the window takes."""
        self.carry_over(program, scale)
        self.heard("takes")
        self.release()
