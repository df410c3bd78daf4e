#!/usr/bin/python3
"""Which folders may include which libraries: the rules that a compiler cannot hold.

The codec libraries' headers lie where every compiler looks, so that the link line does not hide them.
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

# Benchmarks hold ours against a library's bare loop; the one file of the seam's test stands for a fault.
COMPARING = ("bench/", "tests/seam/Logic.cpp")


def may_include(path, header):
    """Why a file may not include a header; nothing if it may."""
    if TOOLKIT.match(header) and not path.startswith(("platform/qt/", "tests/qt/", *COMPARING)):
        return "the toolkit belongs to platform/qt"
    if CODEC.match(header) and not path.startswith(COMPARING):
        if not path.startswith("imaging/"):
            return "codec libraries belong to imaging"
        if not path.endswith(".cpp"):
            return "a header must not lead to a codec library"
    if path.startswith("imaging/") and header.startswith("platform/"):
        if not header.startswith("imaging/"):
            return "the codecs know nothing of the seam"
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
            seen += bool(include)
            reason = may_include(path, include[1]) if include else ""
            if reason:
                faults.append(f"{path}:{number}: <{include[1]}>: {reason}")
    print("\n".join(faults) if faults else f"{seen} includes, each where it may be")
    # A check that sees nothing has lost its way to the sources.
    return 1 if faults or seen < 100 else 0


sys.exit(main(Path(sys.argv[1])))
