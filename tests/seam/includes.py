#!/usr/bin/python3
"""Which folders may include which: the levels of the house, and who may see the toolkit and the codec libraries.

A compiler cannot hold these rules: every header is found from the project's root, and the libraries' headers are
where every compiler looks.
"""

import os
import re
import sys
from pathlib import Path

INCLUDE = re.compile(r"^\s*#\s*include\s*[<\"]([^>\"]+)[>\"]")
TOOLKIT = re.compile(r"^(Q[A-Z]|Qt|qt|q[a-z]+\.h$|xcb/)")
CODEC = re.compile(
    r"^(jpeglib|jerror|jconfig|jmorecfg|turbojpeg|png|spng|zlib|libdeflate|tiff|tiffio|tiffconf)\.h"
    r"|^(gif_lib|lcms2|ft2build)\.h|^(fontconfig|freetype)/"
)

LEVELS = {"imaging": 0, "platform": 1, "preferences": 2, "filetypes": 2, "conversion": 2, "window": 3, "shell": 4}

# The rooms of imaging, in the order of the drawing. A format may use another only where it is named here.
ROOMS = ["bits", "pixels", "colour", "deflate", "lzw"]
FORMATS = {"gif": [], "jpeg": [], "png": [], "tiff": [], "pict": []}

UPWARD = {("window", "shell/MainMenuBar.h")}
BODIES = ("platform/qt/", "platform/none/")

# Benchmarks hold ours against a library's bare loop; the one file of the seam's test stands for a fault.
COMPARING = ("bench/", "platform/qt/bench/", "tests/seam/Logic.cpp")


def top(path):
    return path.split("/", 1)[0]


def breaks_level(path, header):
    """Why the levels forbid the include; nothing if they allow it."""
    here, there = LEVELS.get(top(path)), LEVELS.get(top(header))
    if here is None or there is None or (top(path), header) in UPWARD:
        return ""
    if there > here:
        return f"{top(path)} is level {here}, {top(header)} level {there}"
    for body in BODIES:
        if top(path) in LEVELS and header.startswith(body) and not path.startswith((body, "shell/main.cpp")):
            return "a body of the seam is known to main alone"
    return ""


def breaks_room(path, header):
    """Why the order of the rooms of imaging forbids the include; nothing if it allows it."""
    if not (path.startswith("imaging/") and header.startswith("imaging/")):
        return ""
    here, there = path.split("/")[1], header.split("/")[1]
    if here == there or "." in there:
        return ""
    if here in ROOMS:
        if there in ROOMS and ROOMS.index(there) < ROOMS.index(here):
            return ""
        return f"imaging/{here} is below imaging/{there}"
    if here in FORMATS and there not in ROOMS and there not in FORMATS[here]:
        return f"the format {here} does not use {there}"
    return ""


def breaks_library(path, header):
    """Why a file may not include a library's header; nothing if it may."""
    if path.startswith(COMPARING):
        return ""
    if TOOLKIT.match(header) and not path.startswith(("platform/qt/", "tests/platform/qt/")):
        return "the toolkit belongs to platform/qt"
    if CODEC.match(header):
        if not path.startswith("imaging/"):
            return "codec libraries belong to imaging"
        if not path.endswith(".cpp"):
            return "a header must not lead to a codec library"
    return ""


def sources(root):
    for folder, inner, files in os.walk(root):
        inner[:] = [name for name in inner if name != "build" and not name.startswith(".")]
        for name in files:
            if name.endswith((".h", ".cpp")):
                yield Path(folder, name)


def main(root):
    faults, seen = [], 0
    for source in sources(root):
        path = source.relative_to(root).as_posix()
        for number, line in enumerate(source.read_text().splitlines(), 1):
            include = INCLUDE.match(line)
            if not include:
                continue
            seen += 1
            for rule in (breaks_level, breaks_room, breaks_library):
                reason = rule(path, include[1])
                if reason:
                    faults.append(f"{path}:{number}: <{include[1]}>: {reason}")
    print("\n".join(faults) if faults else f"{seen} includes, each where it may be")
    # A check that sees nothing has lost its way to the sources.
    return 1 if faults or seen < 1000 else 0


sys.exit(main(Path(sys.argv[1])))
