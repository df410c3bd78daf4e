#!/usr/bin/python3
"""Every text can be read and the focus be seen, in the themes and font sizes that people choose."""

import pictures
from table import check, equal, until

# A desktop whose settings the toolkit reads by itself.
DESKTOP = {"XDG_CURRENT_DESKTOP": "KDE", "KDE_SESSION_VERSION": "5", "KDE_FULL_SESSION": "true"}

# Background and text of windows, background and text of what is chosen.
DARK = ((42, 46, 50), (252, 252, 252), (61, 174, 233), (20, 20, 20))
HIGH_CONTRAST = ((0, 0, 0), (255, 255, 255), (255, 255, 0), (0, 0, 0))

# Web Content Accessibility Guidelines 2.2, success criteria 1.4.3 and 1.4.6.
LEAST, HIGH = 4.5, 7


def settings(colours=None, font=None):
    """What a desktop's control centre would have stored."""
    lines = []
    if font:
        lines += ["[General]"] + [f"{kind}=DejaVu Sans,{font},-1,5,50,0,0,0,0,0" for kind in ("font", "menuFont")]
    if colours:
        back, text, chosen, chosen_text = [",".join(map(str, colour)) for colour in colours]
        for group in ("Window", "Button", "View", "Tooltip"):
            lines += [f"[Colors:{group}]", f"BackgroundNormal={back}", f"BackgroundAlternate={back}"]
            lines += [f"ForegroundNormal={text}", f"ForegroundInactive={text}", f"ForegroundLink={text}"]
            lines += [f"ForegroundVisited={text}", f"DecorationFocus={chosen}", f"DecorationHover={chosen}"]
        lines += ["[Colors:Selection]", f"BackgroundNormal={chosen}", f"ForegroundNormal={chosen_text}"]
    return "\n".join(lines) + "\n"


def started(place, **chosen):
    (place.settings / "kdeglobals").write_text(settings(**chosen))
    return place.start(environment=DESKTOP)


class Shot:
    """The screen at one moment."""

    def __init__(self, place):
        file = place.settings / "screen.png"
        place.screen.shoot(file)
        self.width, self.data = place.screen.size[0], pictures.pixels(file)

    def colours(self, box):
        """The pixels of a box, row after row."""
        left, top, width, height = box
        rows = (self.data[3 * (y * self.width + left) :][: 3 * width] for y in range(top, top + height))
        return [tuple(row[at : at + 3]) for row in rows for at in range(0, len(row), 3)]


def luminance(colour):
    """Relative luminance, as the guidelines define it."""
    linear = [c / 3294.6 if c <= 10 else ((c / 255 + 0.055) / 1.055) ** 2.4 for c in colour]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def contrast(colours):
    """How far the farthest colour of a box stands out from its most frequent one."""
    tally = {colour: colours.count(colour) for colour in set(colours)}
    back = luminance(max(tally, key=tally.get))
    return max((max(back, other) + 0.05) / (min(back, other) + 0.05) for other in map(luminance, tally))


def texts(program):
    """What bears text: name and box. Of the group only its caption, which stands at its head."""
    found = []
    for node in program.controls():
        left, top, width, height = node.box
        if node.role in ("label", "check box") or (node.role == "menu item" and node.has("showing")):
            found.append((node.name, (left, top, width, height)))
        if node.role == "panel" and node.name:
            found.append((node.name, (left, top, width, 12)))
    return found


def readable(least, colours=None):
    def row(place):
        with started(place, colours=colours) as program:
            program.activate()
            program.idle(0)
            shot = Shot(place)
            if colours:
                left, top, _, _ = program.find("filler").box
                equal(shot.colours((left + 2, top + 2, 1, 1)), [colours[0]], "the theme's own background")
            told = {name: round(contrast(shot.colours(box)), 1) for name, box in texts(program)}
            equal(len(told), 7, f"texts on the screen ({told})")
            equal([name for name in told if told[name] < least], [], f"texts too faint, of {told}")
    return row


def focus_seen(colours=None):
    def row(place):
        with started(place, colours=colours) as program:
            program.activate()
            program.idle(0)
            for role, name in (
                ("slider", "Qualité (70%) :"),
                ("check box", "Auto Sauvegarde en PNG"),
                ("check box", "Auto Sauvegarde en JPG"),
            ):
                before = Shot(place).colours(program.find(role, name).box)
                program.keys("Tab")
                until(lambda: program.find(role, name).has("focused"), f"the focus on {name}")
                changed = [
                    (old, new)
                    for old, new in zip(before, Shot(place).colours(program.find(role, name).box))
                    if old != new
                ]
                # More than a few pixels, and three to one: by the guidelines' 2.4.13.
                equal(len(changed) >= 20, True, f"{name}: {len(changed)} pixels tell the focus")
                most = max(contrast([old, new]) for old, new in changed)
                equal(most >= 3, True, f"{name}: the focus stands out by {most:.2f}")

    return row


def whole(font):
    """No text comes to an edge of its place, where it would be cut."""

    def row(place):
        with started(place, font=font) as program:
            program.activate()
            program.idle(0)
            shot = Shot(place)
            height = program.find("label").box[3]
            equal(height >= font * 96 / 72, True, f"the texts have grown with the font (height {height})")
            for name, (left, top, width, height) in texts(program):
                if name in ("File", "Edit"):
                    continue  # the bar makes its own room for them, and tells another place
                sides = [(left, top, width, 1), (left + width - 1, top, 1, height)]
                for side in sides:
                    equal(len(set(shot.colours(side))), 1, f"colours at the edge {side} of {name!r}")

    return row


check(
    [
        ("the usual theme", readable(LEAST)),
        ("a dark theme", readable(LEAST, DARK)),
        ("a theme of high contrast", readable(HIGH, HIGH_CONTRAST)),
        ("the focus in the usual theme", focus_seen()),
        ("the focus in a dark theme", focus_seen(DARK)),
        ("the focus in a theme of high contrast", focus_seen(HIGH_CONTRAST)),
        *[(f"whole texts at {font} points", whole(font)) for font in (9, 14, 20, 28)],
    ],
    screen=(1920, 1600),
)
