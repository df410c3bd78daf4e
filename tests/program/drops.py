#!/usr/bin/python3
"""Files dragged to the window from another program are converted."""

import os

import pictures
from drags import Drag, uri_list
from lease import Lease
from table import both_ticked, check, equal, names, until


def make(place, *files, **about):
    for name in files:
        pictures.make(place.pictures / name, **(about or {"colour": pictures.RED}))
    return [place.pictures / name for name in files]


def with_copies(*files):
    return sorted(name.encode() for name in files + tuple(name.replace(".gif", ".png") for name in files))


def drop(place, program, offered):
    with Drag(place, offered) as drag:
        drag.drop_on(program)
        equal("failed" in drag.told, False, "the sender was refused")


def one_file(place):
    files = make(place, "a b.gif")
    with place.start() as program:
        drop(place, program, uri_list(files))
        program.idle(1)
        equal(program.title(), "Veltrane V2 : a b.gif", "title")
        equal(program.close(), 0, "exit status")
    equal(names(place.pictures), [b"a b.gif", b"a b.png"], "the folder")


def five_files(place):
    files = make(place, "1.gif", "2.gif", "3.gif", "4.gif", "5.gif")
    pictures.make(files[-1], pictures.BLUE)
    both_ticked(place)
    with place.start() as program:
        drop(place, program, uri_list(files))
        program.idle(5)
        equal(program.title(), "Veltrane V2 : 5.gif", "title")
        left, top, width, height = program.find("image").box
        middle = left + width // 2, top + height // 2
        until(lambda: place.screen.pixel(*middle) == pictures.BLUE, "the last picture in the preview")
        equal(program.close(), 0, "exit status")
    equal(len(names(place.pictures)), 15, "files in the folder")


def mixed(place):
    make(place, "a.gif", "z.gif")
    (place.pictures / "notes.txt").write_text("no picture")
    (place.pictures / "folder.gif").mkdir()
    here = place.pictures.as_uri().encode()
    offered = [
        b"# a comment",
        here + b"/notes.txt",
        b"http://example.com/far.gif",
        here + b"/a.gif",
        here + b"/folder.gif",
        b"file://elsewhere.example/far.gif",
        here + b"/gone.gif",
        b"",
        here + b"/z.gif",
    ]
    with place.start() as program:
        drop(place, program, b"\r\n".join(offered) + b"\r\n")
        program.idle(2)
        equal(program.title(), "Veltrane V2 : z.gif", "title")
        equal(program.message(), None, "a message")
        equal(program.close(), 0, "exit status")
    wanted = [b"a.gif", b"a.png", b"folder.gif", b"notes.txt", b"z.gif", b"z.png"]
    equal(names(place.pictures), wanted, "the folder")


def refused(offer):
    """Over the window the sender hears that nothing is taken; let go there, the drag has failed."""

    def row(place):
        make(place, "picture.gif")
        (place.pictures / "notes.txt").write_text("no picture")
        (place.pictures / "folder").mkdir()
        before = names(place.pictures)
        with place.start() as program:
            program.idle(0)
            with Drag(place, offer(place.pictures.as_uri().encode())) as drag:
                drag.carry_over(program)
                drag.heard("over")
                drag.release()
                equal("takes" in drag.told, False, "the window takes it")
                equal("failed" in drag.told, True, "the sender was refused")
            program.idle(0)
            equal(program.close(), 0, "exit status")
        equal(names(place.pictures), before, "the folder")

    return row


def by_content(place):
    pictures.make(place.pictures / "no suffix", pictures.GREEN, kind="jpg")
    with place.start() as program:
        drop(place, program, uri_list([place.pictures / "no suffix"]))
        program.idle(1)
    equal(names(place.pictures), [b"no suffix", b"no suffix.png"], "the folder")


def odd_names(place):
    folder = os.fsencode(place.pictures)
    files = [b"caf\xe9.gif", b"100%41#?.gif", "📷 é.gif".encode(), b"two\nlines.gif"]
    for name in files:
        pictures.make(os.path.join(folder, name), pictures.RED, kind="gif")
    with place.start() as program:
        drop(place, program, uri_list(os.path.join(os.fsdecode(folder), os.fsdecode(name)) for name in files))
        program.idle(4)
    equal(
        names(place.pictures),
        sorted(files + [name.replace(b".gif", b".png") for name in files]),
        "the folder",
    )


MANY = [f"{number:03}.gif" for number in range(300)]


def sender_is_free(place):
    """The sender is answered while files still wait, and hears nothing more of them."""
    files = make(place, *MANY)
    with place.start() as program:
        with Lease(files[0]):
            drop(place, program, uri_list(files))
            equal(len(names(place.pictures)), len(MANY), "files in the folder before the first copy")
        program.idle(300)
        equal(program.title(), "Veltrane V2 : 299.gif", "title")
        equal(program.close(), 0, "exit status")
    equal(names(place.pictures), with_copies(*MANY), "the folder")


def second_drop(place):
    first, second = MANY[:150], MANY[150:]
    files = make(place, *MANY, size="300x200")
    with place.start() as program:
        drop(place, program, uri_list(files[:150]))
        drop(place, program, uri_list(files[150:]))
        program.idle(300)
        equal(program.title(), "Veltrane V2 : 299.gif", "title: the second drop comes last")
    equal(names(place.pictures), with_copies(*first, *second), "the folder")


def controls_live(place):
    """The slider and a box that are moved during a drop take effect from the next file on."""
    files = make(place, *MANY)
    both_ticked(place)
    with place.start() as program:
        program.activate()
        program.keys("Tab")
        with Lease(files[150]) as lease:
            drop(place, program, uri_list(files))
            lease.wait()
            program.keys("Prior", "Tab", "space")
        until(lambda: "Qualité (80%) : " in program.labels(), "the label to follow the slider")
        box = until(lambda: program.find("check box", "Auto Sauvegarde en PNG"), "the box")
        until(lambda: not box.has("checked"), "the box to be clear")
        program.idle(300)
    qualities = [pictures.quality(place.pictures / name) for name in ("000.jpg", "150.jpg", "299.jpg")]
    equal(qualities, [70, 70, 80], "the quality of the first JPEG, of the one under way, and of the last")
    written = [(place.pictures / name).exists() for name in ("000.png", "150.png", "299.png")]
    equal(written, [True, True, False], "the PNG of the first file, of the one under way, and of the last")


def closed_in_the_middle(how):
    def row(place):
        files = make(place, *MANY)
        place.prefer("ConversionJPG=ko\nConversionPNG=OK\nTauxJPG=42\n")
        with place.start() as program:
            with Lease(files[20]) as lease:
                drop(place, program, uri_list(files))
                lease.wait()
                how(program)
            equal(program.ended(), 0, "exit status")
        copies = [name for name in names(place.pictures) if name.endswith(b".png")]
        equal(20 <= len(copies) < 300, True, f"closed in the middle ({len(copies)} copies)")
        for name in copies:
            copy = place.pictures / os.fsdecode(name)
            equal(pictures.complaints(copy), "", f"pngcheck on {name}")
        equal(len(names(place.pictures)), 300 + len(copies), "nothing else in the folder")
        equal(sorted(place.preferred()), ["ConversionJPG=ko", "ConversionPNG=OK", "TauxJPG=42"], "settings")

    return row


def failure_ends_the_drop(place):
    files = make(place, "1.gif", "3.gif", "4.gif")
    (place.pictures / "2.gif").write_bytes(b"GIF89a no picture")
    with place.start() as program:
        drop(place, program, uri_list([files[0], place.pictures / "2.gif", *files[1:]]))
        message = program.answer()
        equal(
            "« 2.gif »" in message and "2 éléments" in message,
            True,
            f"file and rest in the message ({message})",
        )
        program.idle(1)
        equal(program.message(), None, "another message")
        equal(program.close(), 0, "exit status")
    equal((place.pictures / "3.png").exists(), False, "the rest of the drop taken in")


def both_of_one_name(place):
    """The copy of the first would replace the second, which waits in the same drop."""
    files = make(place, "logo.jpg", "logo.png", "z.gif")
    pictures.make(files[1], pictures.BLUE)
    before = [file.read_bytes() for file in files]
    with place.start() as program:
        drop(place, program, uri_list(files))
        until(program.message, "a message")
        message = program.answer()
        equal("« logo.png »" in message and "« logo.jpg »" in message, True, f"both names in it ({message})")
        program.idle(3)
        equal(program.close(), 0, "exit status")
    equal([file.read_bytes() for file in files], before, "the originals")
    equal(names(place.pictures), [b"logo.jpg", b"logo.png", b"z.gif", b"z.png"], "the folder")


check(
    [
        ("one file", one_file),
        ("five files: count, title, preview of the last", five_files),
        ("what is no picture is passed over in silence", mixed),
        ("a picture by its content, whatever its name", by_content),
        ("names that are no text, or look like escapes", odd_names),
        ("a text file alone is refused", refused(lambda here: here + b"/notes.txt\r\n")),
        ("a folder alone is refused", refused(lambda here: here + b"/folder\r\n")),
        ("a remote address alone is refused", refused(lambda here: b"http://example.com/a.gif\r\n")),
        ("another machine's file is refused", refused(lambda here: b"file://elsewhere.example/a.gif\r\n")),
        ("an empty drag is refused", refused(lambda here: b"\r\n")),
        ("the sender of 300 files is free at once", sender_is_free),
        ("a second drop waits its turn", second_drop),
        ("the controls live during a drop", controls_live),
        ("closed in the middle of a drop", closed_in_the_middle(lambda program: program.ask_to_close())),
        (
            "ended by SIGTERM in the middle of a drop",
            closed_in_the_middle(lambda program: program.terminate()),
        ),
        ("two originals, one of which has the name of the other's copy", both_of_one_name),
        ("a failure ends its drop and says how many are left", failure_ends_the_drop),
    ]
)
