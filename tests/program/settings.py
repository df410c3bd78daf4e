#!/usr/bin/python3
"""The settings are kept from one run to the next, whatever lies in their place."""

import os
import signal

import pictures
from table import check, equal, until

FIRST = (False, True, 70)
CHANGED = (True, False, 81)
LINES = ["ConversionJPG", "ConversionPNG", "TauxJPG"]


def state(program):
    """What the window shows: JPG ticked, PNG ticked, quality."""
    program.shown()
    found = {
        role: until(lambda role=role: program.find(*role), str(role))
        for role in [
            ("check box", "Auto Sauvegarde en JPG"),
            ("check box", "Auto Sauvegarde en PNG"),
            ("slider",),
        ]
    }
    jpg, png, slider = found.values()
    return jpg.has("checked"), png.has("checked"), slider.value


def change(program):
    """Ticks JPG, clears PNG, quality 81: by the keys."""
    program.activate()
    until(lambda: program.find("check box", "Auto Sauvegarde en JPG").has("focused"), "the focus")
    program.keys("space", "Tab", "Prior", "Right", "Tab", "space")
    until(lambda: state(program) == CHANGED, "the changes to show")


def changed_lines(place):
    stored = dict(line.split("=", 1) for line in place.preferred())
    equal(list(stored), LINES, "the keys stored")
    equal((stored["ConversionJPG"], stored["TauxJPG"]), ("OK", "81"), "the values stored")
    equal(stored["ConversionPNG"] != "OK", True, "PNG stored as clear")


# A program that is started in the background by some shells ignores what the keyboard sends.
USUAL_SIGNALS = ("env", "--default-signal=INT,HUP")


def kept(how):
    def row(place):
        with place.start(prefix=USUAL_SIGNALS) as program:
            equal(state(program), FIRST, "a first run")
            change(program)
            how(program)
            equal(program.ended(), 0, "exit status")
        changed_lines(place)
        with place.start() as program:
            equal(state(program), CHANGED, "the next run")

    return row


def quit_by_keys(program):
    program.activate()
    program.keys("ctrl+q")


def quit_by_menu(program):
    program.activate()
    program.keys("alt+f")
    until(lambda: program.find("menu item", "Quit").has("showing"), "the menu")
    program.keys("q")


def sent(number):
    return lambda program: program.send(number)


def outlives_its_terminal(place):
    with place.start(prefix=("env", "--ignore-signal=HUP")) as program:
        equal(state(program), FIRST, "a first run")
        program.send(signal.SIGHUP)
        change(program)
        equal(program.close(), 0, "exit status")
    changed_lines(place)


def unknown_key(place):
    place.prefer("Langue=français=oui\nConversionPNG=ko\nTauxJPG=12\n")
    with place.start() as program:
        equal(state(program), (False, False, 12), "what is shown")
        equal(program.close(), 0, "exit status")
    equal("Langue=français=oui" in place.preferred(), True, "the unknown key is stored again")
    equal(len(place.preferred()), 4, "lines stored")


def starts(content, shown, lines=3):
    """Whatever the file holds: the program shows, takes a picture in, ends well and stores `lines` lines."""

    def row(place):
        (place.settings / "Veltrane.pref").write_bytes(content())
        pictures.make(place.pictures / "a.gif", pictures.RED)
        with place.start("a.gif") as program:
            equal(state(program), shown, "what is shown")
            program.idle(1)
            equal(program.close(), 0, "exit status")
        equal(len(place.preferred()), lines, "lines stored")

    return row


def many_keys():
    return b"".join(b"key%d=value\n" % number for number in range(600_000))


def a_folder_in_its_place(place):
    (place.settings / "Veltrane.pref").mkdir()
    pictures.make(place.pictures / "a.gif", pictures.RED)
    with place.start("a.gif") as program:
        equal(program.answer().startswith("Une erreur est survenue : "), True, "the box at the start")
        equal(state(program), (False, False, 70), "what is shown: the form's own values")
        program.idle(1)
        program.ask_to_close()
        equal(program.answer().startswith("Une erreur est survenue : "), True, "the box at the end")
        equal(program.ended(), 0, "exit status")
    equal(os.listdir(place.settings), ["Veltrane.pref"], "the folder of settings")


def a_link_in_its_place(place):
    kept_elsewhere = place.pictures / "kept.pref"
    kept_elsewhere.write_text("TauxJPG=33\n")
    (place.settings / "Veltrane.pref").symlink_to(kept_elsewhere)
    with place.start() as program:
        equal(state(program), (False, True, 33), "what is shown")
        equal(program.close(), 0, "exit status")
    equal((place.settings / "Veltrane.pref").is_symlink(), True, "the link is still one")
    equal(len(kept_elsewhere.read_text().splitlines()), 3, "lines stored behind the link")


def no_folder_yet(place):
    with place.start(settings=place.settings / "new") as program:
        equal(state(program), (False, True, 70), "what is shown")
        equal(program.close(), 0, "exit status")
    equal((place.settings / "new" / "Veltrane.pref").is_file(), True, "settings stored")


check(
    [
        ("closed by the window manager, the settings are kept", kept(lambda program: program.ask_to_close())),
        ("quit by Ctrl+Q, the settings are kept", kept(quit_by_keys)),
        ("quit by the menu, the settings are kept", kept(quit_by_menu)),
        ("ended by SIGTERM, the settings are kept", kept(sent(signal.SIGTERM))),
        ("ended by SIGINT, the settings are kept", kept(sent(signal.SIGINT))),
        ("ended by SIGHUP, the settings are kept", kept(sent(signal.SIGHUP))),
        ("under nohup it outlives its terminal", outlives_its_terminal),
        ("a key that is not ours is stored again", unknown_key),
        ("an empty file", starts(lambda: b"", FIRST)),
        ("a file of garbage", starts(lambda: bytes(range(256)).replace(b"=", b"") * 40, FIRST)),
        (
            "values that are no values",
            starts(lambda: b"TauxJPG=many\nConversionPNG=\n=\nConversionJPG\n", (False, False, 0), 4),
        ),
        ("a quality out of its range", starts(lambda: b"TauxJPG=99999999999999999999\n", (False, True, 100))),
        (
            "line ends of other systems",
            starts(lambda: b"ConversionJPG=OK\r\nTauxJPG=5\rConversionPNG=OK\r\n", (True, True, 5)),
        ),
        ("10 MB in one line", starts(lambda: b"x" * 10_000_000, FIRST)),
        ("10 MB in many keys", starts(many_keys, FIRST, 600_003)),
        ("a folder in its place", a_folder_in_its_place),
        ("a link in its place stays one", a_link_in_its_place),
        ("a folder of settings that is not there yet", no_folder_yet),
    ]
)
