#!/usr/bin/python3
"""The quality's label follows the slider, whatever moves it."""

from drags import pointer
from table import check, equal, until


def text(value):
    return f"Qualité ({value}%) : "


def told(program, value, what):
    until(
        lambda: text(value) in program.labels(),
        f"the label {text(value)!r} {what} (shown: {program.labels()})",
    )
    equal(program.find("slider").value, value, f"the slider {what}")


def loaded(line, value):
    def row(place):
        place.prefer(line)
        with place.start() as program:
            program.idle(0)
            told(program, value, f"after loading {line!r}")

    return row


def slider_box(program):
    return until(lambda: program.find("slider"), "the slider").box


def over(program):
    left, top, width, height = slider_box(program)
    pointer("mousemove", left + width // 2, top + height // 2)


def wheel(place):
    """One notch away from the person is more, one toward is less; the ends hold."""
    place.prefer("TauxJPG=95\n")
    with place.start() as program:
        program.idle(0)
        over(program)
        up, down = 4, 5
        for button, value in [(up, 98), (down, 95), (down, 92), (up, 95), (up, 98), (up, 100), (up, 100)]:
            pointer("click", button)
            told(program, value, f"after button {button}")


def dragged(place):
    """The label keeps step while the button is held; nothing is stored before the end."""
    place.prefer("TauxJPG=50\n")
    with place.start() as program:
        program.idle(0)
        left, top, width, height = slider_box(program)
        centre = left + width // 2, top + height // 2
        pointer("mousemove", *centre, "mousedown", 1)
        last = 50
        for step in (20, 45, 70):
            pointer("mousemove", centre[0] + step, centre[1])
            value = until(lambda: moved(program, last), f"the thumb to leave {last}")
            equal(0 < value - last < step, True, f"the way of the thumb from {last} to {value}")
            told(program, value, "while the thumb is held")
            last = value
        for to, value in ((left - 30, 0), (left + width + 30, 100), (centre[0], 50)):
            pointer("mousemove", to, centre[1])
            told(program, value, f"with the thumb held at {to}")
        pointer("mouseup", 1)
        told(program, 50, "after the thumb was let go")
        pointer("mousemove", left, centre[1])
        equal(place.preferred(), ["TauxJPG=50"], "the stored settings before the end")
        told(program, 50, "once the pointer has left")
        equal(program.close(), 0, "exit status")
    equal("TauxJPG=50" in place.preferred(), True, "the quality is stored at the end")


def moved(program, last):
    """The slider's value once it is another."""
    slider = program.find("slider")
    return slider.value if slider is not None and slider.value != last else None


def groove(place):
    """A press beside the thumb goes one page toward it."""
    with place.start() as program:
        program.idle(0)
        left, top, width, height = slider_box(program)
        middle = top + height // 2
        for x, value in ((left + 3, 60), (left + 3, 50), (left + width - 3, 60)):
            pointer("mousemove", x, middle, "click", 1)
            told(program, value, f"after a press at {x - left} of {width}")


check(
    [
        ("nothing loaded", loaded("", 70)),
        ("0 loaded", loaded("TauxJPG=0\n", 0)),
        ("70 loaded, the form's own value", loaded("TauxJPG=70\n", 70)),
        ("85 loaded", loaded("TauxJPG=85\n", 85)),
        ("100 loaded", loaded("TauxJPG=100\n", 100)),
        ("the wheel", wheel),
        ("the thumb dragged", dragged),
        ("the groove pressed", groove),
    ]
)
