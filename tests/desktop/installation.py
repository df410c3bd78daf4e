#!/usr/bin/python3
"""An installation holds what its own files lead to, each file where desktops look for it.

    installation.py BUILD
"""

import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

NAME = "org.veltrane.veltrane"
NOT_BUILT = 77  # ctest counts it as skipped
ICONS = [
    f"share/icons/hicolor/{size}x{size}/apps/{NAME}.png" for size in (16, 22, 24, 32, 48, 64, 128, 256, 512)
]
FILES = [
    "bin/Veltrane",
    f"share/applications/{NAME}.desktop",
    f"share/dbus-1/services/{NAME}.service",
    *ICONS,
    f"share/icons/hicolor/scalable/apps/{NAME}.svg",
    f"share/icons/hicolor/symbolic/apps/{NAME}-symbolic.svg",
    "share/man/man1/Veltrane.1",
    f"share/metainfo/{NAME}.metainfo.xml",
    f"share/mime/packages/{NAME}.xml",
]


def faults(prefix, final):
    files = sorted(path.relative_to(prefix).as_posix() for path in prefix.rglob("*") if not path.is_dir())
    if files != sorted(FILES):
        yield f"missing: {sorted(set(FILES) - set(files))}, too many: {sorted(set(files) - set(FILES))}"
    program = prefix / "bin/Veltrane"
    service = (prefix / f"share/dbus-1/services/{NAME}.service").read_text()
    if f"Exec={final}/bin/Veltrane\n" not in service:
        yield f"the bus starts another program:\n{service}"
    if not os.access(program, os.X_OK):
        yield "the program cannot be started"
    page = (prefix / "share/man/man1/Veltrane.1").read_text()
    if not re.search(r'^\.TH VELTRANE 1 "" "Veltrane [\d.]+"', page) or "@" in page.replace(
        "@veltrane.invalid", ""
    ):
        yield "the manual page tells no version, or was not filled in"
    modes = {
        f"{path.stat().st_mode & 0o777:o}" for path in prefix.rglob("*") if path.is_file() and path != program
    }
    if modes != {"644"}:
        yield f"files of modes {modes}"


def main(build):
    if not os.access(build / "Veltrane", os.X_OK):
        print(f"not built: {build}")
        return NOT_BUILT
    with tempfile.TemporaryDirectory(prefix="veltrane-install-") as folder:
        prefix = "/opt/another"  # than the build was set up for
        subprocess.run(
            ["cmake", "--install", build, "--prefix", prefix],
            check=True,
            stdout=subprocess.DEVNULL,
            env=dict(os.environ, DESTDIR=folder),
        )
        found = [fault.replace(folder, "") for fault in faults(Path(folder + prefix), prefix)]
    print("\n".join(found))
    return 1 if found else 0


sys.exit(main(Path(sys.argv[1])))
