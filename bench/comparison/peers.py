"""The other converters: each at its defaults, but for JPEG at quality 70, and on one thread."""

import os
from pathlib import Path

from . import machine
from .process import Taken, finish

HERE = Path(__file__).resolve().parents[1]
ENVIRONMENT = dict(
    os.environ,
    VIPS_CONCURRENCY="1",
    OMP_NUM_THREADS="1",
    MAGICK_THREAD_LIMIT="1",
    NODE_PATH=os.fspath(machine.CACHE / "sharp/node_modules"),
)


def sharp(suffix, folder, files):
    return [[machine.node(), HERE / "convert_sharp.js", suffix, folder, *files]]


def pillow(suffix, folder, files):
    return [["/usr/bin/python3", HERE / "convert_pillow.py", suffix, folder, *files]]


def qt(suffix, folder, files):
    return [[machine.BENCH / "peer_converter", suffix, "70" if suffix == "jpg" else "-1", folder, *files]]


def imagemagick(suffix, folder, files):
    quality = ["-quality", "70"] if suffix == "jpg" else []
    return [["mogrify", "-path", folder, "-format", suffix, *quality, *files]]


def graphicsmagick(suffix, folder, files):
    quality = ["-quality", "70"] if suffix == "jpg" else []
    # The folder is put before the whole path of each file.
    names = [file.name for file in files]
    return [["gm", "mogrify", "-output-directory", folder, "-format", suffix, *quality, *names]]


def target(folder, file, suffix):
    return folder / f"{file.stem}.{suffix}"


def libvips(suffix, folder, files):
    options = "[Q=70]" if suffix == "jpg" else ""
    return [["vips", "copy", file, f"{target(folder, file, suffix)}{options}"] for file in files]


def ffmpeg(suffix, folder, files):
    quiet = ["-nostdin", "-v", "error", "-y", "-threads", "1"]
    once = ["-threads", "1", "-frames:v", "1", "-update", "1"]
    return [["ffmpeg", *quiet, "-i", file, *once, target(folder, file, suffix)] for file in files]


PEERS = {
    "sharp": sharp,
    "libvips": libvips,
    "ffmpeg": ffmpeg,
    "Qt": qt,
    "Pillow": pillow,
    "GraphicsMagick": graphicsmagick,
    "ImageMagick": imagemagick,
}


def peers_for(suffix):
    """Who writes the format at a quality that means the same."""
    return [name for name in PEERS if not (suffix == "jpg" and name == "ffmpeg")]


class Peer:
    """A converter in one round: its start-up is measured in it."""

    def __init__(self, name):
        self.name = name
        self.start = Taken()

    def _all(self, suffix, folder, files):
        """All from one folder, which is where the commands run."""
        commands = PEERS[self.name](suffix, folder, files)
        return len(commands), sum((finish(command, ENVIRONMENT, files[0].parent) for command in commands), Taken())

    def begin(self, suffix, folder, trivial):
        """Measures a start of the tool: on a picture of one pixel."""
        _, self.start = self._all(suffix, folder, [trivial])

    def convert(self, suffix, folder, files):
        """What the work took, the start-up taken off."""
        processes, taken = self._all(suffix, folder, files)
        return taken.less(self.start, processes)
