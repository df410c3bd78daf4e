#!/usr/bin/python3
"""The preview as it stands on the screen, pixel by pixel, at every scale of the screen."""

import canvas
import pictures
from canvas import WHITE, Picture, fitted, plain, place_of, shows
from drags import Drag, uri_list
from table import check, equal, until

DEFAULT = (569, 343)
LEAST = (479, 213)
INSET = (20, 167)  # of the canvas in the content, below the menu bar


def inset(program):
    """Where the canvas lies in the content, and how large it is: (left, top, width, height)."""
    content, shown = program.find("filler").box, program.find("image").box
    return shown[0] - content[0], shown[1] - content[1], shown[2], shown[3]


def on_white(picture, left, top):
    """What a canvas of any size shows that holds a picture at a place."""
    return lambda width, height: plain(width, height, WHITE).laid(picture, left, top)


def fills(size, box, within=DEFAULT):
    """A plain picture fills a box of a canvas, and around it all is white."""

    def row(place):
        pictures.make(place.pictures / "a.gif", pictures.RED, size="%dx%d" % size)
        with place.start("a.gif") as program:
            program.idle(1)
            if within == LEAST:
                program.resize(100, 100)
            until(lambda: inset(program) == (*INSET, *within), f"a canvas of {within} at {INSET}")
            left, top, width, height = box
            shows(program, on_white(plain(width, height, pictures.RED), left, top))

    return row


def no_picture(place):
    with place.start() as program:
        program.idle(0)
        shows(program, lambda width, height: plain(width, height, WHITE))


def one_to_one(box, scale):
    """The size of a picture that is shrunk to fill the canvas's width, and drawn at its own pixels."""
    for height in range(round(box[3] * scale) - 1, 0, -1):
        size = canvas.in_pixels(box, scale)[2], height
        left, top, width, height = fitted(size, box[2:])
        device = canvas.in_pixels((box[0] + left, box[1] + top, width, height), scale)
        if device[2:] == size:
            return size, (device[0], device[1])
    raise AssertionError(f"no picture fits {box} at {scale}")


def sharp(scale):
    """Pictures of noise: one neighbour's breath on a pixel would show."""

    def row(place):
        with place.start(environment={"QT_SCALE_FACTOR": str(scale)}) as program:
            program.idle(0)
            box = place_of(program)
            size, at = one_to_one(box, scale)
            file = place.pictures / "noise.png"
            pictures.noise(file, "%dx%d" % size)
            with Drag(place, uri_list([file])) as drag:
                drag.drop_on(program, scale)
            program.idle(1)
            equal(place_of(program), box, "the canvas's place after the drop")
            origin = canvas.in_pixels(box, scale)
            noise = Picture(*size, pictures.pixels(file))
            shows(program, on_white(noise, at[0] - origin[0], at[1] - origin[1]), scale)

    return row


def transparent(place):
    """Left nothing but a blue that is not to be seen, in the middle half a red, right the whole of it."""
    file = place.pictures / "a.png"
    pictures.stripes(file, ["#0000ff00", "#ff000080", "#ff0000ff"], "100x60")
    with place.start("a.png") as program:
        program.idle(1)
        left, top = fitted((300, 60), DEFAULT)[:2]
        half = plain(100, 60, (255, 127, 127))
        full = plain(100, 60, (255, 0, 0))
        shows(
            program,
            lambda width, height: plain(width, height, WHITE)
            .laid(half, left + 100, top)
            .laid(full, left + 200, top),
        )


def resized_under_load(place):
    """At rest nothing is left of an earlier picture, nor of an earlier size."""
    files = [place.pictures / f"{number:03}.gif" for number in range(300)]
    for number, file in enumerate(files):
        pictures.make(file, size=["800x640", "400x700"][number % 2])
    # As large as the one before it: only its pixels tell them apart.
    pictures.make(files[-1], pictures.BLUE, size="800x640")

    def wanted(width, height):
        left, top, own_width, own_height = fitted((800, 640), (width, height))
        return plain(width, height, WHITE).laid(plain(own_width, own_height, pictures.BLUE), left, top)

    with place.start() as program:
        program.idle(0)
        with Drag(place, uri_list(files)) as drag:
            drag.drop_on(program)
        steps = 0
        # The last ones come to a window at rest.
        while (program.taken() or 0) < 200:
            steps += 1
            program.resize(600 + 37 * steps % 400, 549 + 53 * steps % 300)
        equal(steps > 3, True, f"resized while files were waiting ({steps} times)")
        shows(program, wanted)
        width, height = 600 + 37 * steps % 400, 549 + 53 * steps % 300
        equal(place_of(program)[2:], (width - 31, height - 206), "the canvas in the last size")
        program.resize(777, 600)
        until(lambda: place_of(program)[2:] == (746, 394), "the canvas's size after one more")
        shows(program, wanted)


check(
    [
        ("no picture: the canvas is white", no_picture),
        ("shrunk to the height", fills((1000, 800), (70, 0, 428, 343))),
        ("shrunk to the width", fills((3000, 500), (0, 124, 569, 94))),
        ("never enlarged, the odd point right and below", fills((200, 100), (184, 121, 200, 100))),
        ("as large as the canvas", fills((569, 343), (0, 0, 569, 343))),
        ("wider by one point", fills((570, 343), (0, 0, 569, 342))),
        ("higher by one point", fills((569, 344), (1, 0, 567, 343))),
        ("tall and narrow", fills((500, 2000), (242, 0, 85, 343))),
        ("too flat to be seen", fills((16000, 1), (0, 171, 0, 0))),
        ("at the least size of the window", fills((4000, 3000), (97, 0, 284, 213), LEAST)),
        ("pixel for pixel at scale 1", sharp(1)),
        ("pixel for pixel at scale 1.5", sharp(1.5)),
        ("pixel for pixel at scale 2", sharp(2)),
        ("transparent parts on white", transparent),
        ("resized again and again during a drop", resized_under_load),
    ],
    screen=(1600, 1400),
)
