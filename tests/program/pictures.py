"""Pictures for the tests, made and looked at by tools that are not ours."""

import functools
import hashlib
import subprocess

RED, GREEN, BLUE = (200, 30, 40), (20, 160, 60), (30, 80, 220)


def make(path, colour=None, size="120x80", kind=None):
    """A picture in the format of the path's suffix, or of `kind`: of one colour, or a soft run of many."""
    what = ("-size", size, "gradient:#103060-#f0c020", "-rotate", "30")
    if colour is not None:
        what = ("-size", size, "xc:rgb(%d,%d,%d)" % colour)
    with open(path, "wb") as file:
        file.write(_converted(kind or path.suffix[1:].lower(), *what))


def noise(path, size):
    """A picture that no format makes small."""
    with open(path, "wb") as file:
        file.write(_converted(path.suffix[1:], "-size", size, "xc:", "+noise", "Random", "-depth", "8"))


def stripes(path, colours, size):
    """Upright stripes side by side, each of a size and of a colour as ImageMagick writes it."""
    what = [part for colour in colours for part in ("-size", size, f"xc:{colour}")]
    with open(path, "wb") as file:
        file.write(_converted(path.suffix[1:], *what, "+append"))


@functools.cache
def _converted(kind, *what):
    return subprocess.run(["convert", *what, "-strip", f"{kind}:-"], capture_output=True, check=True).stdout


def pixels(path):
    """Every pixel of a file, red, green and blue, as ImageMagick decodes it."""
    # By its input: in a path it sees patterns and options.
    with open(path, "rb") as file:
        command = ["convert", "-", "-depth", "8", "rgb:-"]
        return subprocess.run(command, stdin=file, capture_output=True, check=True).stdout


def far_apart(path, other):
    """How far two pictures lie apart: the root of the mean square of all differences, 0 to 255."""
    ours, theirs = pixels(path), pixels(other)
    if len(ours) != len(theirs):
        return 255.0
    return (sum((a - b) ** 2 for a, b in zip(ours, theirs)) / len(ours)) ** 0.5


def quality(path):
    """A JPEG file's quality, read back from its tables."""
    asked = subprocess.run(["identify", "-format", "%Q", path], capture_output=True, text=True, check=True)
    return int(asked.stdout)


def complaints(path):
    """What the strict reader of the format, one that is not ours, dislikes about a file."""
    suffix = path.suffix.lower()
    command = (
        ["pngcheck", "-q", path] if suffix == ".png" else ["djpeg", "-strict", "-outfile", "/dev/null", path]
    )
    read = subprocess.run(command, capture_output=True, text=True, check=False)
    return (read.stdout + read.stderr).strip() if read.returncode else ""


def digest(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()
