#!/usr/bin/python3
"""What can be ticked or moved stands out from the window in every theme, three to one.

The pixels are measured, by the rules of the Web Content Accessibility Guidelines 2.1, 1.4.11.
"""

import subprocess

from table import check, until

from desk.themes import CONTRAST, DARK, LIGHT, dress

LEAST = 3.0
SQUARE = 16  # pixels that a check box takes, without its text
GROOVE = 4  # pixels from the middle of a slider to the edge of its groove, and one more
SOON = 20.0  # seconds until it is painted


def luminance(colour):
    def linear(part):
        part /= 255
        return part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4

    red, green, blue = map(linear, colour)
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue


def contrast(one, other):
    darker, lighter = sorted((luminance(one), luminance(other)))
    return (lighter + 0.05) / (darker + 0.05)


def pixels(left, top, width, height):
    shot = [
        "import",
        "-silent",
        "-window",
        "root",
        "-crop",
        f"{width}x{height}+{left}+{top}",
        "-depth",
        "8",
        "rgb:-",
    ]
    data = subprocess.run(shot, capture_output=True, check=True).stdout
    return {tuple(data[at : at + 3]) for at in range(0, len(data), 3)}


def stands_out(box, width, height):
    """Whether a pixel at the upper left of a control does, against the window beside it."""
    left, top, _, _ = box
    back = pixels(left - 4, top, 1, 1).pop()
    return max(contrast(back, pixel) for pixel in pixels(left, top, width, height)) >= LEAST


def in_theme(theme):
    def row(place):
        with place.start(environment=dress(place.settings, theme)) as program:
            program.activate()  # from now on it stays where it is
            box = until(lambda: program.find("check box", "Auto Sauvegarde en JPG"), "the box").box
            slider = until(lambda: program.find("slider"), "the slider").box
            until(lambda: stands_out(box, SQUARE, box[3]), "a box that stands out", SOON)
            # Above the groove there is only the handle.
            until(
                lambda: stands_out(slider, slider[2], slider[3] // 2 - GROOVE),
                "a handle that stands out",
                SOON,
            )

    return row


check(
    [
        ("an unticked box or the handle is lost in a light window", in_theme(LIGHT)),
        ("an unticked box or the handle is lost in a dark window", in_theme(DARK)),
        ("an unticked box or the handle is lost in a black window", in_theme(CONTRAST)),
    ]
)
