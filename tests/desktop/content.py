#!/usr/bin/python3
"""A desktop that has our content marks knows PICT without its name, and takes nothing else for it.

    content.py SOURCES
"""

import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SYSTEM = Path("/usr/share/mime/packages/freedesktop.org.xml")
PICT = "image/x-pict"
# Version 1 pictures that begin with a drawing: nothing in them that could not stand in any file.
UNKNOWN = {"header-file-v1.pict", "old-colours.pict"}


def known_as(data):
    from gi.repository import Gio  # it reads the folders of the environment once

    return Gio.content_type_guess(None, data)[0]


def faults(root):
    pictures = sorted((root / "tests/data/pict").glob("*.pict"))
    unknown = {picture.name for picture in pictures if known_as(picture.read_bytes()) != PICT}
    if unknown != UNKNOWN:
        yield f"not known as PICT: {sorted(unknown)}, not {sorted(UNKNOWN)}"
    for file in sorted((root / "tests/data").rglob("*")):
        if file.is_file() and file.suffix != ".pict" and known_as(file.read_bytes()) == PICT:
            yield f"taken for PICT: {file}"
    if len(pictures) < 50:
        yield "hardly a picture was looked at"


def main(root):
    with tempfile.TemporaryDirectory(prefix="veltrane-mime-") as folder:
        packages = Path(folder) / "mime/packages"
        packages.mkdir(parents=True)
        for types in (SYSTEM, root / "desktop/org.veltrane.veltrane.xml"):
            shutil.copy(types, packages)
        os.environ.update(XDG_DATA_DIRS=folder, XDG_DATA_HOME=folder)
        # Nothing here is to outlive a power cut.
        env = dict(os.environ, PKGSYSTEM_ENABLE_FSYNC="0")
        subprocess.run(["update-mime-database", Path(folder) / "mime"], check=True, env=env)
        found = list(faults(root))
    print("\n".join(found))
    return 1 if found else 0


sys.exit(main(Path(sys.argv[1])))
