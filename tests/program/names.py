#!/usr/bin/python3
"""Any name that a disk holds is converted under the right output names, and shown as plain text."""

import os

import pictures
from table import both_ticked, check, equal, names


def converts(name, base, shown=None):
    """Twice in one run: exactly two copies, named after `base`. `shown` is the name in the title."""

    def row(place):
        folder = os.fsencode(place.pictures)
        pictures.make(os.path.join(folder, name), pictures.GREEN, kind="gif")
        both_ticked(place)
        with place.start(name, name) as program:
            program.idle(2)
            if shown is not None:
                equal(program.title(), "Veltrane V2 : " + shown, "title")
            equal(program.close(), 0, "exit status")
        equal(names(place.pictures), sorted([name, base + b".png", base + b".jpg"]), "the folder")
        equal(
            tuple(pictures.pixels(os.path.join(folder, base + b".png"))[:3]),
            pictures.GREEN,
            "the PNG's colour",
        )
        equal(
            len(pictures.pixels(os.path.join(folder, base + b".jpg"))),
            120 * 80 * 3,
            "bytes of the JPEG's pixels",
        )

    return row


def plain(name):
    """A name with a suffix that the copies do not bear, shown as it is."""
    return converts(name.encode(), name.encode().removesuffix(b".gif"), name)


def upper_case(place):
    pictures.make(place.pictures / "PHOTO.JPG")
    pictures.make(place.pictures / "SCAN.PNG")
    pictures.make(place.pictures / "Page.Gif")
    both_ticked(place)
    with place.start("PHOTO.JPG", "SCAN.PNG", "Page.Gif") as program:
        program.idle(3)
    wanted = [b"PHOTO.JPG", b"PHOTO.png", b"SCAN.PNG", b"SCAN.jpg", b"Page.Gif", b"Page.jpg", b"Page.png"]
    equal(names(place.pictures), sorted(wanted), "the folder")


def too_long(place):
    name = b"n" * 251 + b".tif"
    pictures.make(os.path.join(os.fsencode(place.pictures), name), pictures.RED, kind="tif")
    both_ticked(place)
    with place.start(name) as program:
        for format in ("PNG", "JPEG"):
            message = program.answer()
            equal(message.startswith("Erreur de type : "), True, f"the message for {format} ({message})")
            equal(len(message) > len("Erreur de type : "), True, "a reason in it")
        program.idle(1)
        equal(program.close(), 0, "exit status")
    equal(names(place.pictures), [name], "the folder")


def in_a_message(name, shown):
    """The message about a damaged file shows its name as plain text."""

    def row(place):
        with open(os.path.join(os.fsencode(place.pictures), name), "wb") as file:
            file.write(b"no picture")
        with place.start(name) as program:
            message = program.answer()
            equal(f"« {shown} »" in message, True, f"the name in the message ({message})")
            equal(program.close(), 0, "exit status")

    return row


check(
    [
        ("blanks", plain(" two  blanks .gif")),
        ("both quotes", plain('l\'"été".gif')),
        ("a percent sign is no escape", plain("%41 100% %s.gif")),
        ("a number sign is no fragment", plain("page#2.gif")),
        ("an ampersand is no mnemonic", plain("A&B &c.gif")),
        ("Qt's window placeholder", plain("[*]changed[*].gif")),
        ("marks are no mark-up", plain("<b>bold<b> &amp;.gif")),
        ("an emoji and other scripts", plain("📷 фото 写真.gif")),
        ("a leading dash is no option", plain("-platform.gif")),
        ("what looks like an address", plain("file:picture.gif")),
        ("a back slash", plain("a\\b.gif")),
        ("a tilde, a dollar sign, a star", plain("~ $HOME *?.gif")),
        ("a line end", converts(b"two\nlines.gif", b"two\nlines", "two␊lines.gif")),
        ("bytes that are no text", converts(b"caf\xe9 \xff.gif", b"caf\xe9 \xff", "caf\ufffd \ufffd.gif")),
        ("output names of 255 bytes", converts(b"n" * 251 + b".gif", b"n" * 251, "n" * 251 + ".gif")),
        ("output names of 255 bytes, no text", converts(b"\xe9" * 251 + b".gif", b"\xe9" * 251)),
        ("an output name that is too long", too_long),
        ("no suffix at all", converts(b"picture", b"picture", "picture")),
        ("only a suffix", converts(b".gif", b"", ".gif")),
        ("upper-case suffixes", upper_case),
        ("mark-up in a message", in_a_message(b"<b>&amp;%1.gif", "<b>&amp;%1.gif")),
        ("a leading dash in a message", in_a_message("-é&x.gif".encode(), "-é&x.gif")),
    ]
)
