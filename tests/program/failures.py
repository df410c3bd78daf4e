#!/usr/bin/python3
"""What cannot be read or written is told, harms nothing, and the run goes on."""

import os
from pathlib import Path

import ordinary
import pictures
from table import Skipped, both_ticked, check, equal, names, until

FOLDER_LOCKED = "Dossier parent non autorisé en ecriture"


def mount(name):
    """One of the folders mounted for these tests."""
    if "VELTRANE_MOUNTS" not in os.environ:
        raise Skipped("no right to mount")
    return Path(os.environ["VELTRANE_MOUNTS"]) / name


def missing_file(place):
    pictures.make(place.pictures / "there.gif")
    with place.start("missing.gif", "no/such/folder.gif", "there.gif", "gone.png") as program:
        program.idle(1)
        equal(program.title(), "Veltrane V2 : there.gif", "title")
        equal(program.close(), 0, "exit status")
    equal(names(place.pictures), [b"there.gif", b"there.png"], "the folder")


def damaged_file(place):
    pictures.make(place.pictures / "first.gif", pictures.GREEN)
    pictures.make(place.pictures / "whole.jpg")
    cut = (place.pictures / "whole.jpg").read_bytes()
    (place.pictures / "whole.jpg").unlink()
    (place.pictures / "cut.jpg").write_bytes(cut[: len(cut) * 2 // 3])
    pictures.make(place.pictures / "next.gif", pictures.BLUE)
    with place.start("first.gif", "cut.jpg", "next.gif") as program:
        until(program.message, "a message")
        equal(program.title(), "Veltrane V2 : first.gif", "title while the message stands")
        equal(program.taken(), 1, "files taken in while the message stands")
        message = program.answer()
        equal(
            "« cut.jpg »" in message and "JPEG" in message, True, f"file and fault in the message ({message})"
        )
        program.idle(2)
        equal(program.title(), "Veltrane V2 : next.gif", "title at the end")
        equal(program.close(), 0, "exit status")
    equal(
        names(place.pictures),
        [b"cut.jpg", b"first.gif", b"first.png", b"next.gif", b"next.png"],
        "the folder",
    )


def told(path, word):
    """A document that cannot be opened gives a message with its name; the next one is taken in."""

    def row(place):
        path(place)
        pictures.make(place.pictures / "next.gif")
        with place.start("item", "next.gif") as program:
            message = program.answer()
            equal("« item »" in message and word in message, True, f"the message ({message})")
            program.idle(1)
            equal(program.close(), 0, "exit status")

    return row


def unreadable(place):
    pictures.make(place.pictures / "item", kind="gif")
    (place.pictures / "item").chmod(0)


def stop_button(place):
    for name in ("1.gif", "2.gif", "3.gif"):
        (place.pictures / name).write_bytes(b"GIF89a no picture")
    with place.start("1.gif", "2.gif", "3.gif") as program:
        equal("« 1.gif »" in program.answer(), True, "the first file's message")
        equal("« 2.gif »" in program.answer("Arrêter"), True, "the second file's message")
        program.idle(0)
        equal(program.message(), None, "a third message")
        equal(program.close(), 0, "exit status")


def locked(folder, program):
    """Both formats are refused in so many words, and nothing is written."""
    before = names(folder)
    for format in ("PNG", "JPEG"):
        equal(program.answer(), FOLDER_LOCKED, f"the message for {format}")
    program.idle(1)
    equal(program.message(), None, "a third message")
    equal(program.close(), 0, "exit status")
    equal(names(folder), before, "the folder")


def locked_folder(place):
    folder = place.pictures / "locked"
    folder.mkdir()
    pictures.make(folder / "photo.gif")
    both_ticked(place)
    folder.chmod(0o555)
    with place.start("locked/photo.gif") as program:
        locked(folder, program)
    folder.chmod(0o755)


def read_only_mount(place):
    folder = mount("readonly")
    both_ticked(place)
    with place.start(folder / "photo.gif") as program:
        locked(folder, program)


def one_format_locked(place):
    folder = place.pictures / "locked"
    folder.mkdir()
    pictures.make(folder / "photo.jpg")
    both_ticked(place)
    folder.chmod(0o555)
    with place.start("locked/photo.jpg") as program:
        equal(program.answer(), FOLDER_LOCKED, "the message for PNG")
        program.idle(1)
        equal(program.message(), None, "a message for the format that the file has")
    folder.chmod(0o755)


def full_disk(place):
    folder = mount("small")
    pictures.noise(folder / "photo.gif", "400x400")
    (folder / "photo.png").write_bytes(b"the old copy")
    rest = os.statvfs(folder).f_bavail * os.statvfs(folder).f_frsize
    (folder / "filler").write_bytes(b"x" * (rest - 40_000))
    before = names(folder)
    with place.start(folder / "photo.gif") as program:
        message = program.answer()
        equal(message.startswith("Erreur de type : "), True, f"the message ({message})")
        equal(len(message) > len("Erreur de type : "), True, f"a reason in it ({message})")
        program.idle(1)
        equal(program.close(), 0, "exit status")
    equal((folder / "photo.png").read_bytes()[:20], b"the old copy", "the old copy")
    equal(names(folder), before, "the folder")
    for name in before:
        (folder / os.fsdecode(name)).unlink()


def too_large(place):
    """A limit on the size of files is a failure of the save, not the program's end."""
    pictures.noise(place.pictures / "photo.gif", "400x400")
    pictures.make(place.pictures / "next.gif")
    (place.pictures / "photo.png").write_bytes(b"the old copy")
    with place.start("photo.gif", "next.gif", prefix=("prlimit", "--fsize=50000")) as program:
        message = program.answer()
        equal(message.endswith("fichier trop grand pour ce disque"), True, f"the message ({message})")
        program.idle(2)
        equal(program.close(), 0, "exit status")
    equal((place.pictures / "photo.png").read_bytes(), b"the old copy", "the old copy")
    wanted = [b"next.gif", b"next.png", b"photo.gif", b"photo.png"]
    equal(names(place.pictures), wanted, "the folder")


def no_streams(place):
    """Started with its standard streams closed, none of its own files takes their numbers."""
    pictures.make(place.pictures / "photo.gif")
    closed = ("sh", "-c", 'exec "$0" "$@" <&- >&- 2>&-')
    with place.start("photo.gif", prefix=closed) as program:
        program.idle(1)
        streams = {os.readlink(f"/proc/{program.process.pid}/fd/{number}") for number in range(3)}
        equal(streams, {"/dev/null"}, "the standard streams")
        equal(program.close(), 0, "exit status")


def unreadable_left_over(place):
    pictures.make(place.pictures / "photo.gif")
    (place.pictures / ".veltrane-0.tmp").touch(0o200)
    with place.start("photo.gif") as program:
        program.idle(1)
    equal(names(place.pictures), [b"photo.gif", b"photo.png"], "the folder")


def locked_copy(place):
    pictures.make(place.pictures / "photo.gif")
    (place.pictures / "photo.png").write_bytes(b"the old copy")
    (place.pictures / "photo.png").chmod(0o444)
    with place.start("photo.gif") as program:
        equal(program.answer().startswith("Erreur de type : "), True, "the message")
        program.idle(1)
    equal((place.pictures / "photo.png").read_bytes(), b"the old copy", "the old copy")
    equal(names(place.pictures), [b"photo.gif", b"photo.png"], "the folder")


def folder_at_the_copy(place):
    pictures.make(place.pictures / "photo.gif")
    (place.pictures / "photo.png").mkdir()
    with place.start("photo.gif") as program:
        equal(program.answer().startswith("Erreur de type : "), True, "the message")
        program.idle(1)
    equal(names(place.pictures), [b"photo.gif", b"photo.png"], "the folder")


def copy_is_a_link(make_link):
    """The copy's path leads to the source: the source stays what it is, the link becomes the copy."""

    def row(place):
        source, copy = place.pictures / "photo.gif", place.pictures / "photo.png"
        pictures.make(source, pictures.BLUE)
        before = pictures.digest(source)
        make_link(copy, source)
        with place.start("photo.gif") as program:
            program.idle(1)
            equal(program.close(), 0, "exit status")
        equal(pictures.digest(source), before, "the source")
        equal(copy.is_symlink(), False, "still a link")
        equal(pictures.complaints(copy), "", "pngcheck on the copy")
        equal(names(place.pictures), [b"photo.gif", b"photo.png"], "the folder")

    return row


def copy_is_a_second_name(place):
    """The copy's path is another name of the source's file: both names keep it, and a message says so."""
    source, copy = place.pictures / "photo.gif", place.pictures / "photo.png"
    pictures.make(source, pictures.BLUE)
    copy.hardlink_to(source)
    with place.start("photo.gif") as program:
        message = program.answer()
        equal("« photo.png » est un autre nom" in message and "« photo.gif »" in message, True, f"the names ({message})")
        program.idle(1)
        equal(program.close(), 0, "exit status")
    equal(copy.samefile(source), True, "one file under two names")
    equal(names(place.pictures), [b"photo.gif", b"photo.png"], "the folder")


def unreadable_settings(place):
    both_ticked(place)
    (place.settings / "Veltrane.pref").chmod(0)
    pictures.make(place.pictures / "a.gif")
    with place.start("a.gif") as program:
        equal("Une erreur est survenue : " in program.answer(), True, "the message at the start")
        program.idle(1)
        program.ask_to_close()
        equal("Une erreur est survenue : " in program.answer(), True, "the message at the end")
        equal(program.ended(), 0, "exit status")


def locked_settings(place):
    place.settings.chmod(0o555)
    pictures.make(place.pictures / "a.gif")
    with place.start("a.gif") as program:
        program.idle(1)
        program.ask_to_close()
        equal("Une erreur est survenue : " in program.answer(), True, "the message at the end")
        equal(program.ended(), 0, "exit status")
    place.settings.chmod(0o755)
    equal(names(place.settings), [], "the folder of settings")


ordinary.become()
check(
    [
        ("a file that is not there changes nothing and says nothing", missing_file),
        ("a damaged file is named, what is shown stays, the next is taken in", damaged_file),
        ("a folder given as a picture", told(lambda place: (place.pictures / "item").mkdir(), "")),
        ("a file without the right to read it", told(unreadable, "")),
        ("an empty file", told(lambda place: (place.pictures / "item").touch(), "")),
        (
            "a pipe given as a picture does not hang",
            told(lambda place: os.mkfifo(place.pictures / "item"), ""),
        ),
        ("the second button ends what waits", stop_button),
        ("a folder without the right to write", locked_folder),
        ("a folder without the right to write, one format wanted", one_format_locked),
        ("a read-only mount", read_only_mount),
        ("a full disk keeps the old copy", full_disk),
        ("a limit on the size of files", too_large),
        ("standard streams that are closed", no_streams),
        ("a left-over that cannot be read is taken away", unreadable_left_over),
        ("a copy without the right to write is kept", locked_copy),
        ("a folder where the copy would be", folder_at_the_copy),
        (
            "the copy's path is a link to the source",
            copy_is_a_link(lambda copy, source: copy.symlink_to(source.name)),
        ),
        (
            "the copy's path is another name of the source",
            copy_is_a_second_name,
        ),
        (
            "a link to nowhere at the copy's path",
            copy_is_a_link(lambda copy, source: copy.symlink_to("nowhere")),
        ),
        ("settings without the right to read them", unreadable_settings),
        ("a folder of settings without the right to write", locked_settings),
    ]
)
