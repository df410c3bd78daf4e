"""Whether the built program carries what its build asks for: each of these goes missing silently."""

import os
import platform
import re
import subprocess
import sys

PROGRAM = os.environ["VELTRANE"]
LANDING_PAD = b"\xf3\x0f\x1e\xfa"


def readelf(option):
    command = ["env", "LC_ALL=C", "readelf", "-W", option, PROGRAM]
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def functions():
    """The program's functions, those of its own and those of libraries that it calls."""
    return set(re.findall(r"(?:FUNC|NOTYPE)\s.*?\s(\w+)(?:@|$)", readelf("--symbols"), re.M))


def main():
    if not os.access(PROGRAM, os.X_OK):
        print("not built:", PROGRAM)
        return 77
    segments, dynamic, called = readelf("--segments"), readelf("--dynamic"), functions()
    stack = re.search(r"GNU_STACK.*", segments)
    with open(PROGRAM, "rb") as file:
        pads = file.read().count(LANDING_PAD)
    checks = {
        "it is loaded anywhere (PIE)": "DYN (Position-Independent" in readelf("--file-header"),
        "the linker's tables are read-only (RELRO)": "GNU_RELRO" in segments,
        "all of them, before it starts (BIND_NOW)": re.search(r"FLAGS_1.*\bNOW\b", dynamic),
        "the stack is not executable": stack and "E" not in stack[0].split()[-2],
        "no segment is written and executed": not re.search(r"LOAD.* RWE ", segments),
        "libraries come from the system's folders": not re.search(r"RPATH|RUNPATH", dynamic),
        "code is not patched while loading": "TEXTREL" not in dynamic,
        "frames are guarded": "__stack_chk_fail" in called,
        "copies are checked": any(re.fullmatch(r"__(mem|str|vsn|sn)\w+_chk", name) for name in called),
        "calls land on pads": pads > 1000 or platform.machine() != "x86_64",
    }
    for claim, holds in checks.items():
        print("ok     " if holds else "FAILED ", claim)
    return 0 if all(checks.values()) else 1


if __name__ == "__main__":
    sys.exit(main())
