"""The preview, pixel by pixel: what the canvas shows, and what it ought to."""

import math
import subprocess

from table import Overdue, until

WHITE = (255, 255, 255)


class Picture:
    """Pixels: three bytes each, row after row."""

    def __init__(self, width, height, data):
        self.width, self.height, self.data = width, height, data

    def __eq__(self, other):
        return (self.width, self.data) == (other.width, other.data)

    def colour(self, x, y):
        at = 3 * (y * self.width + x)
        return tuple(self.data[at : at + 3])

    def laid(self, picture, left, top):
        """A copy with another picture upon it."""
        data = bytearray(self.data)
        for row in range(picture.height):
            at = 3 * ((top + row) * self.width + left)
            data[at : at + 3 * picture.width] = picture.data[3 * row * picture.width :][: 3 * picture.width]
        return Picture(self.width, self.height, bytes(data))

    def told(self):
        """What a person needs to see why it is not the right one."""
        rows = [self.data[3 * y * self.width : 3 * (y + 1) * self.width] for y in range(self.height)]
        marked = [y for y, row in enumerate(rows) if row.strip(b"\xff")]
        if not marked:
            return f"{self.width} x {self.height}, all white"
        left = min((len(rows[y]) - len(rows[y].lstrip(b"\xff"))) // 3 for y in marked)
        right = max((len(rows[y].rstrip(b"\xff")) + 2) // 3 for y in marked)
        top, height = marked[0], marked[-1] + 1 - marked[0]
        centre = self.colour((left + right) // 2, top + height // 2)
        return (
            f"{self.width} x {self.height}, not white from ({left}, {top}), {right - left} x {height},"
            f" {centre} in its middle"
        )


def plain(width, height, colour):
    return Picture(width, height, bytes(colour) * (width * height))


def fitted(picture, canvas):
    """Where a picture goes in a canvas, both by their sizes: (left, top, width, height)."""
    (own_width, own_height), (width, height) = picture, canvas
    fit_width, fit_height = picture
    if width < own_width:
        fit_width, fit_height = width, width * own_height // own_width
    if height < fit_height:
        fit_width, fit_height = height * own_width // own_height, height
    return (width - fit_width) // 2, (height - fit_height) // 2, fit_width, fit_height


def place_of(program):
    """The canvas inside its window, in the form's units; None when it cannot be told now."""
    frame, canvas = program.find("frame"), program.find("image")
    if frame is None or canvas is None:
        return None
    left, top, width, height = canvas.box
    return left - frame.box[0], top - frame.box[1], width, height


def in_pixels(box, scale):
    """A box in real pixels, each edge at the nearest."""
    left, top, right, bottom = (
        math.floor(scale * edge + 0.5) for edge in (box[0], box[1], box[0] + box[2], box[1] + box[3])
    )
    return left, top, right - left, bottom - top


def seen(program, scale=1):
    """What the canvas shows now; None when it cannot be told."""
    box = place_of(program)
    if box is None:
        return None
    left, top, width, height = in_pixels(box, scale)
    crop = f"{width}x{height}+{left}+{top}"
    window = str(program.shown())
    shot = subprocess.run(
        ["import", "-silent", "-window", window, "-crop", crop, "-depth", "8", "rgb:-"],
        capture_output=True,
        check=False,  # a window that is being resized can elude it
    ).stdout
    return Picture(width, height, shot) if len(shot) == 3 * width * height else None


def shows(program, wanted, scale=1):
    """Waits until the canvas shows a picture, which `wanted` gives for the canvas's size in real pixels."""
    last = [None, None]

    def right():
        last[0] = seen(program, scale)
        last[1] = last[0] and wanted(last[0].width, last[0].height)
        return last[0] is not None and last[0] == last[1]

    try:
        until(right, "the preview")
    except Overdue:
        told = [picture.told() if picture else "nothing" for picture in last]
        raise AssertionError(f"the preview: {told[0]}; not {told[1]}") from None
