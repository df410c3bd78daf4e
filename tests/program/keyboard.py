#!/usr/bin/python3
"""The window without a mouse: the order of the focus, the keys of the slider, what a screen reader tells."""

import subprocess
import sys
import threading
from pathlib import Path

import pictures
from table import check, equal, until

JPG, PNG = ("check box", "Auto Sauvegarde en JPG"), ("check box", "Auto Sauvegarde en PNG")


def focused(program):
    """Role and name of what has the focus; None when it cannot be told now."""
    found = [
        node
        for node in program.controls()
        if node.has("focused") and node.role in ("check box", "slider", "label")
    ]
    return (found[0].role, found[0].name) if len(found) == 1 else None


def goes_to(program, key, wanted):
    program.keys(key)
    until(
        lambda: focused(program) == wanted, f"the focus on {wanted} after {key} (it is on {focused(program)})"
    )


def tab_order(place):
    with place.start() as program:
        program.activate()
        until(lambda: focused(program) == JPG, f"the focus on {JPG} at the start")
        slider = ("slider", "Qualité (70%) :")
        for wanted in (slider, PNG, JPG):
            goes_to(program, "Tab", wanted)
        for wanted in (PNG, slider, JPG):
            goes_to(program, "shift+Tab", wanted)


def slider_keys(place):
    with place.start() as program:
        program.activate()
        goes_to(program, "Tab", ("slider", "Qualité (70%) :"))
        # Each key as often as given, and where it leads to; the label follows, its last blank with it.
        for keys, wanted in [
            (["Right"], 71),
            (["Up"], 72),
            (["Left"], 71),
            (["Down"], 70),
            (["Prior"], 80),
            (["Next"], 70),
            (["End"], 100),
            (["Right"], 100),
            (["Prior"], 100),
            (["Home"], 0),
            (["Left"], 0),
            (["Next"], 0),
            (["Prior", "Prior", "Right"], 21),
        ]:
            program.keys(*keys)
            text = f"Qualité ({wanted}%) : "
            until(
                lambda: text in program.labels(),
                f"the label {text!r} after {keys} (shown: {program.labels()})",
            )
            equal(program.find("slider").value, wanted, f"the slider after {keys}")
            equal(program.find("slider").name, text.strip(), f"the slider's name after {keys}")


def loaded_quality(place):
    place.prefer("TauxJPG=85\n")
    with place.start() as program:
        program.shown()
        until(
            lambda: "Qualité (85%) : " in program.labels(), f"the loaded quality (shown: {program.labels()})"
        )


def space_ticks(place):
    with place.start() as program:
        program.activate()
        until(lambda: focused(program) == JPG, "the focus")
        for wanted in (True, False):
            program.keys("space")
            until(lambda: program.find(*JPG).has("checked") == wanted, f"ticked: {wanted}")


def escaped(program):
    program.keys("Escape")
    return focused(program)


def menus_open(place):
    """By either key; Escape leads back to where the focus was."""
    with place.start() as program:
        program.activate()
        until(lambda: focused(program) == JPG, "the focus at the start")
        for keys in (["F10"], ["Alt_L", "Down"]):
            program.keys(*keys)
            until(lambda: program.find("menu item", "Quit").has("showing"), f"the menu after {keys}")
            # Out of the menu, then out of the bar; a key that comes while the menu goes is lost.
            until(lambda: escaped(program) == JPG, "the focus where it was")
            equal(program.find("menu item", "Quit").has("showing"), False, "the menu still shows")


def names_told(place):
    with place.start() as program:
        program.idle(0)
        told = [(node.role, node.name) for node in program.controls()]
        for wanted in [
            ("frame", "Veltrane V2"),
            ("image", "Aperçu"),
            ("panel", "Déposer un fichier sur cette fenêtre (Conversion automatique)"),
            JPG,
            ("slider", "Qualité (70%) :"),
            ("label", "Qualité (70%) : "),
            PNG,
            ("label", "0 fichiers traités depuis l'ouverture."),
        ]:
            equal(told.count(wanted), 1, f"how often {wanted} is told, in {told}")
        unnamed = [
            role
            for role, name in told
            if not name and role in ("check box", "slider", "image", "push button", "menu item")
        ]
        equal(unnamed, [], "controls without a name")


def preview_told(place):
    """Who cannot see the preview learns whose picture it is and how large; the count tells each change."""
    pictures.make(place.pictures / "a%1 & [*].gif", pictures.RED, size="400x30")
    pictures.make(place.pictures / "b.gif", pictures.RED, size="1000x900")
    (place.pictures / "c.gif").write_bytes(b"GIF89a no picture")
    with Changes() as changes, place.start() as program:
        program.idle(0)
        equal(program.find("image").name, "Aperçu", "before the first picture")
        for file, name in [
            ("a%1 & [*].gif", "Aperçu de a%1 & [*].gif, 400 × 30"),
            ("b.gif", "Aperçu de b.gif, 1000 × 900"),
        ]:
            place.start(file).ended()
            until(lambda: program.find("image").name == name, f"{name} (told: {program.find('image').name})")
            changes.wait_for("image", name)
        for count in (1, 2):
            changes.wait_for("label", f"{count} fichiers traités depuis l'ouverture.")
        place.start("c.gif").ended()
        program.answer()
        equal(program.find("image").name, "Aperçu de b.gif, 1000 × 900", "after a file that is no picture")
        equal(program.close(), 0, "exit status")


class Changes:
    """The new names that the accessibility bus is told of, from `with` to its end: (role, name) each."""

    def __enter__(self):
        listen = [sys.executable, Path(__file__).with_name("listener.py")]
        self.told = []
        self.process = subprocess.Popen(listen, stdout=subprocess.PIPE, text=True)
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()
        until(lambda: self.told, "the listener")
        return self

    def _read(self):
        for line in self.process.stdout:
            self.told.append(tuple(line.rstrip("\n").split("\t")))

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        self.reader.join()

    def wait_for(self, role, name):
        until(lambda: (role, name) in self.told, f"the news that a {role} is named {name!r} ({self.told})")


def whole_texts(place):
    """At the default and at the least size: every text inside its parent, none upon another."""
    with place.start() as program:
        program.idle(0)
        for size in ((600, 549), (100, 100)):
            program.resize(*size)
            controls = [node for node in program.controls() if node.role in ("check box", "label", "slider")]
            frame = program.find("frame").box
            for node in controls:
                equal(within(node.box, frame), True, f"{node.name} at {node.box} in the window at {frame}")
                for other in controls:
                    clear = other is node or apart(node.box, other.box)
                    equal(clear, True, f"{node.name!r} and {other.name!r} apart")
        least = program.find("filler").box[2:]
        equal(least, (510, 400), "the least size of the content")


def within(box, frame):
    left, top, width, height = box
    return (
        left >= frame[0]
        and top >= frame[1]
        and left + width <= frame[0] + frame[2]
        and top + height <= frame[1] + frame[3]
    )


def apart(box, other):
    return (
        box[0] + box[2] <= other[0]
        or other[0] + other[2] <= box[0]
        or box[1] + box[3] <= other[1]
        or other[1] + other[3] <= box[1]
    )


check(
    [
        ("the focus goes round in the form's order, and back", tab_order),
        ("the slider moves by 1 and by 10 and keeps its range", slider_keys),
        ("the label shows a loaded quality", loaded_quality),
        ("the space bar ticks and clears", space_ticks),
        ("the menus open by a key", menus_open),
        ("every control tells its name", names_told),
        ("the preview and the count tell what is new", preview_told),
        ("nothing is cut or covered, down to the least size", whole_texts),
    ]
)
