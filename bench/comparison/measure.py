"""The measuring: rounds in which the program and its peer take turns, on a memory file system."""

import math
import os
import shutil
import statistics
from pathlib import Path

from . import corpus, machine
from .ours import Program
from .peers import Peer, peers_for
from .process import Taken
from .table import SMALLEST

OURS_AT_LEAST, PEER_AT_LEAST = 40e6, 12e6  # pixels of one picture, again and again, for its own figure
PICTURES = 14  # of a row, that get a figure of their own


def median(values):
    return statistics.median(values)


def middle(taken):
    """The medians of several runs."""
    return Taken(median(t.cpu for t in taken), median(t.wall for t in taken), max(t.peak for t in taken))


def fresh(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return folder


def copied(files, folder):
    fresh(folder)
    return [Path(shutil.copyfile(file, folder / file.name)) for file in files]


def pixels(files):
    told = machine.run("identify", "-format", "%w %h\n", *(f"{file}[0]" for file in files)).split()
    return [int(width) * int(height) for width, height in zip(told[::2], told[1::2])]


class Comparison:
    """One row under way."""

    def __init__(self, row, environment, work, rounds, quick=False):
        self.row, self.work, self.rounds, self.quick = row, work, rounds, quick
        self.ours = Program(environment, work, [row.suffix])
        self.peers = {name: Peer(name) for name in peers_for(row.suffix)}
        self.tools = {"Veltrane": self.ours, **self.peers}
        self.files = copied(corpus.pictures(row.form), work / "in")
        self.trivial = corpus.trivial(work, self.files[0].suffix.lstrip("."))
        self.out = {name: work / f"out-{name}" for name in self.tools}

    def once(self, name, files=None, folder=None):
        """One run of a tool, with a start-up of its own round."""
        tool, folder = self.tools[name], fresh(folder or self.out[name])
        tool.begin(self.row.suffix, folder, self.trivial)
        shutil.rmtree(folder)
        folder.mkdir()
        return tool.convert(self.row.suffix, folder, files or self.files)

    def others(self):
        """The peers that run once: for their bytes, or for comparison's sake."""
        wanted = self.peers if not self.quick or self.row.bytes_peer == SMALLEST else [self.row.bytes_peer]
        return [name for name in wanted if name != self.row.cpu_peer]

    def reads(self, name):
        """Whether a peer takes files of this kind at all: Debian's Qt reads no TIFF."""
        try:
            self.tools[name].begin(self.row.suffix, fresh(self.out[name]), self.trivial)
        except RuntimeError as failure:
            print(f"{self.row.key}: without {name}: {failure}", flush=True)
            return False
        return True

    def run(self):
        """The row's figures, as plain values."""
        pair = ["Veltrane", self.row.cpu_peer]
        runs = {name: [] for name in pair}
        for number in range(self.rounds):
            for name in pair if number % 2 == 0 else reversed(pair):
                runs[name].append(self.once(name))
        seconds = {name: middle(taken).cpu for name, taken in runs.items()}
        seconds.update({name: self.once(name).cpu for name in self.others() if self.reads(name)})
        sizes = {name: self.sizes(name) for name in seconds}
        totals = {name: sum(each.values()) for name, each in sizes.items()}
        against = self.row.bytes_peer
        if against == SMALLEST:
            against = min((name for name in totals if name != "Veltrane"), key=totals.get)
        spread = [one.cpu / two.cpu for one, two in zip(*runs.values())]
        return {
            "pixels": sum(pixels(self.files)),
            "rounds": self.rounds,
            "cpu": seconds["Veltrane"] / seconds[self.row.cpu_peer],
            "cpu_spread": [min(spread), max(spread)],
            "bytes": totals["Veltrane"] / totals[against],
            "bytes_peer": against,
            "seconds": seconds,
            "sizes": totals,
            "picture_bytes": worst({s: size / sizes[against][s] for s, size in sizes["Veltrane"].items()}),
            "psnr": self.psnr() if self.row.suffix == "jpg" else None,
            "picture_cpu": None if self.quick else worst(self.each_picture()),
            "disk": {} if self.quick else self.on_disk(pair),
        }

    def sizes(self, name):
        return {file.stem: file.stat().st_size for file in self.out[name].iterdir()}

    def each_picture(self):
        """The CPU ratio of each picture, converted again and again under other names."""
        step = max(1, len(self.files) // PICTURES)
        chosen = self.files[::step][: max(PICTURES, len(self.files) // step)]
        ratios = {}
        for file, area in zip(chosen, pixels(chosen)):
            tries = [self.one_picture(file, area) for _ in range(min(self.rounds, 3))]
            ratios[file.stem] = median(ours for ours, _ in tries) / median(peer for _, peer in tries)
        return ratios

    def one_picture(self, file, area):
        """CPU seconds for one conversion of a picture: ours and the peer's."""
        seconds = []
        for name, at_least in (("Veltrane", OURS_AT_LEAST), (self.row.cpu_peer, PEER_AT_LEAST)):
            times = min(100, math.ceil(at_least / area))
            folder = fresh(self.work / "again")
            links = [folder / f"{file.stem}-{number}{file.suffix}" for number in range(times)]
            for link in links:
                os.link(file, link)
            seconds.append(self.once(name, links, self.work / "out-again").cpu / times)
        return seconds

    def on_disk(self, names):
        """Wall seconds of the row with its files on the disk."""
        folder = machine.CACHE / "disk"
        files = copied(self.files, folder / "in")
        os.sync()
        runs = {name: [] for name in names}
        for _ in range(min(self.rounds, 3)):
            for name in names:
                runs[name].append(self.once(name, files, folder / "out").wall)
        shutil.rmtree(folder)
        return {name: median(walls) for name, walls in runs.items()}

    def psnr(self):
        """Of our copies and the peer's against the pictures: the mean of the differences, and the worst."""
        told = {}
        for name in ("Veltrane", self.row.cpu_peer):
            lines = machine.run("/usr/bin/python3", Path(__file__).with_name("psnr.py"), self.work / "in", self.out[name])
            told[name] = {line.split()[0]: float(line.split()[1]) for line in lines.splitlines()}
        ours, peers = told.values()
        differences = {stem: ours[stem] - peers[stem] for stem in ours}
        last = min(differences, key=differences.get)
        return {"mean": statistics.mean(differences.values()), "worst": [last, differences[last]]}


def worst(ratios):
    """The picture with the largest ratio, and that ratio."""
    last = max(ratios, key=ratios.get)
    return [last, ratios[last]]
