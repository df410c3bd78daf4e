#!/usr/bin/python3
"""looks.py [TARGET]: the window in many dresses on one sheet, to be looked at by eye.

Light, dark and high-contrast themes, large fonts, scale factors 1 to 3, the smallest size, long names; the
release build, on a virtual screen. TARGET is docs/looks.png unless told; the single pictures are left in
build/looks, and the first of them is docs/window.png. Wants what `tools/setup run screen` installs.
"""

import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from desk import themes, wait
from desk.screen import Screen
from desk.themes import CONTRAST, DARK, LIGHT

ROOT = Path(__file__).resolve().parent.parent
PROGRAM = ROOT / "build/release/Veltrane"
SHOTS = ROOT / "build/looks"
SHEET = ROOT / "docs/looks.png"

LONG = (
    "Été à la mer, chez Zoé & Léon — <b>dernière série, prise de vue n° 0042 (recadrée, retouchée, finale) %1"
)

# Caption, file name, and what differs from the usual: theme, font, scale, size asked for.
DRESSES = [
    ("the desktop's own", "vacances.jpg", {}),
    ("light theme", "vacances.jpg", {"theme": LIGHT}),
    ("dark theme", "vacances.jpg", {"theme": DARK}),
    ("high contrast", "vacances.jpg", {"theme": CONTRAST}),
    ("before the first picture", None, {}),
    ("before the first picture, dark", None, {"theme": DARK}),
    ("smallest size", "vacances.jpg", {"size": (1, 1)}),
    ("large", "vacances.jpg", {"size": (1100, 900)}),
    ("long name", LONG + ".jpg", {}),
    ("long name, smallest size, dark", LONG + ".jpg", {"theme": DARK, "size": (1, 1)}),
    ("fonts of 16 points", "vacances.jpg", {"theme": LIGHT, "points": 16}),
    ("fonts of 24 points", "vacances.jpg", {"theme": LIGHT, "points": 24}),
    ("scale 1.5", "vacances.jpg", {"scale": 1.5}),
    ("scale 2", "vacances.jpg", {"scale": 2}),
    ("scale 2, dark, 16 points", "vacances.jpg", {"scale": 2, "theme": DARK, "points": 16}),
    ("scale 3", "vacances.jpg", {"scale": 3}),
]


def landscape(target):
    """A picture of our own."""
    drawing = [
        "-size",
        "960x720",
        "gradient:#2f6fc4-#f0dfc2",
        "-fill",
        "#fdf0c0",
        "-draw",
        "circle 700,220 700,160",
    ]
    for colour, hills in (
        ("#8096ad", "0,440 160,390 330,400 520,340 700,350 860,420 960,390 960,720 0,720"),
        ("#4f7d5c", "0,540 220,510 420,525 640,470 820,480 960,520 960,720 0,720"),
        ("#2f5243", "0,650 260,610 520,630 780,580 960,610 960,720 0,720"),
    ):
        drawing += ["-fill", colour, "-draw", f"polygon {hills}"]
    plain = target.with_name("landscape.jpg")  # in other names the tool would look for orders
    subprocess.run(["convert", *drawing, plain], check=True)
    plain.rename(target)


def shoot(screen, folder, number, name, dress):
    from desk.program import Program  # it finds its bus by the screen's environment

    environment = {}
    if dress.get("theme") or dress.get("points"):
        environment = themes.dress(folder, dress.get("theme"), dress.get("points", 10))
    if "scale" in dress:
        environment["QT_SCALE_FACTOR"] = str(dress["scale"])
    documents = []
    if name:
        landscape(folder / name)
        documents = [name]
    target = SHOTS / f"{number:02}.png"
    with Program(PROGRAM, documents, settings=folder, cwd=folder, environment=environment) as program:
        window = program.shown()
        program.idle(len(documents))
        if "size" in dress:
            program.resize(*dress["size"])
        wait.until(lambda: still(screen, target, window), "a window that is painted")
        program.close()
    return target


def still(screen, target, window):
    """Shoots the window with its frame; whether it looks as it did before."""
    before = target.read_bytes() if target.exists() else b""
    subprocess.run(
        [
            "import",
            "-silent",
            "-frame",
            "-window",
            str(window),
            "-define",
            "png:exclude-chunks=date,time",
            target,
        ],
        check=True,
    )
    return before == target.read_bytes()


def sheet(shots, target):
    """All of them, reduced to one width, with their captions."""
    pieces = []
    for (caption, _, _), shot in zip(DRESSES, shots):
        pieces += ["-label", caption, str(shot)]
    subprocess.run(
        [
            "montage",
            *pieces,
            "-tile",
            "4x",
            "-geometry",
            "420x420>+8+8",
            "-background",
            "#d8d8d8",
            "-pointsize",
            "14",
            "-depth",
            "8",
            "-define",
            "png:exclude-chunks=date,time",
            f"png24:{target}",
        ],
        check=True,
    )


def main(target):
    SHOTS.mkdir(parents=True, exist_ok=True)
    for old in SHOTS.glob("*.png"):
        old.unlink()
    with Screen(2400, 2200) as screen:
        shots = []
        for number, (caption, name, dress) in enumerate(DRESSES):
            with tempfile.TemporaryDirectory(prefix="veltrane-looks-") as folder:
                shots.append(shoot(screen, Path(folder), number, name, dress))
            print(shots[-1], caption, flush=True)
    sheet(shots, target)
    if target == SHEET:
        shutil.copy(shots[0], ROOT / "docs/window.png")
    print(target)


if __name__ == "__main__":
    main(Path(sys.argv[1]) if sys.argv[1:] else SHEET)
