#!/usr/bin/python3
"""Disks that fill up, and mounts that lead from the copy to its source: disks.py [--sizes N] [ROW...]

Wants the right to mount; the mounts are seen by nobody else.
"""

import contextlib
import os
import shutil
import subprocess
import sys

import pictures
from table import NOT_BUILT, check, equal, names, option

PAGE = os.sysconf("SC_PAGE_SIZE")
OLD = b"the older copy"
OWN = "VELTRANE_OWN_MOUNTS"
TRY = 'folder=$(mktemp -d) && trap "rmdir $folder" EXIT && mount -t tmpfs none $folder && umount $folder'


def own_mounts():
    """Goes on in a mount name space of its own."""
    if OWN in os.environ:
        return
    unshare = ["unshare", "--mount", "--propagation", "private"]
    if subprocess.run([*unshare, "sh", "-c", TRY], capture_output=True, check=False).returncode != 0:
        print("no right to mount")
        sys.exit(NOT_BUILT)
    os.environ[OWN] = "1"
    os.execvp("unshare", [*unshare, sys.executable, *sys.argv])


@contextlib.contextmanager
def mounted(*arguments):
    subprocess.run(["mount", *map(os.fspath, arguments)], check=True)
    try:
        yield
    finally:
        subprocess.run(["umount", arguments[-1]], check=True)


def pages(size):
    return -(-size // PAGE)


def convert(place, documents, failures):
    """One run that takes in all documents; so many of them give a message each, which are its result."""
    with place.start(*documents) as program:
        messages = [program.answer() for _ in range(failures)]
        program.idle(len(documents))
        equal(program.close(), 0, "exit status")
    return messages


def filling(suffix, settings, sizes):
    """Disks of so many sizes around the one that just holds the source, the old copy and the new one."""

    def row(place):
        place.prefer(settings)
        model = place.pictures / "photo.gif"
        pictures.noise(model, "500x500")
        convert(place, [model], 0)
        new = model.with_suffix(suffix).read_bytes()
        rooms = [pages(len(new)) - sizes // 2 + number for number in range(sizes)]
        with contextlib.ExitStack() as stack:
            disks = [place.pictures / f"{number:02}" for number in range(sizes)]
            for disk, room in zip(disks, rooms):
                disk.mkdir()
                size = (pages(model.stat().st_size) + pages(len(OLD)) + room) * PAGE
                stack.enter_context(mounted("-t", "tmpfs", "-o", f"size={size}", "none", disk))
                shutil.copy2(model, disk / "photo.gif")
                (disk / "photo").with_suffix(suffix).write_bytes(OLD)
            fill(place, model, disks, [room * PAGE < len(new) for room in rooms], suffix, new)

    return row


def fill(place, model, disks, short, suffix, new):
    messages = convert(place, [disk / "photo.gif" for disk in disks], sum(short))
    for message in messages:
        wanted = f"Erreur de type : impossible d'écrire « photo{suffix} » : plus de place sur le disque"
        equal(message, wanted, "the message")
    for disk, is_short in zip(disks, short):
        equal(
            (disk / "photo").with_suffix(suffix).read_bytes() == (OLD if is_short else new), True, "the copy"
        )
        equal(pictures.digest(disk / "photo.gif"), pictures.digest(model), "the source")
        equal(names(disk), sorted([b"photo.gif", b"photo" + suffix.encode()]), "the disk")
    freed = [disk for disk, is_short in zip(disks, short) if is_short]
    for disk in freed:
        subprocess.run(["mount", "-o", f"remount,size={64 * len(new)}", disk], check=True)
    convert(place, [disk / "photo.gif" for disk in freed], 0)
    for disk in freed:
        equal((disk / "photo").with_suffix(suffix).read_bytes() == new, True, "the copy once there is room")
    print(f"        {len(disks)} sizes: {len(freed)} too small, {len(disks) - len(freed)} enough", flush=True)


def about(path):
    found = os.stat(path)
    return pictures.digest(path), found.st_mode, found.st_mtime_ns, found.st_ino


def refused(place, document, source):
    """The copy would be the source: one message, and nothing has changed."""
    before, found = about(source), names(place.pictures)
    messages = convert(place, [document], 1)
    equal(messages, ["Erreur de type : « photo.png » est le fichier d'origine"], "the message")
    equal(about(source), before, "the source")
    equal(names(place.pictures), found, "the folder")


def source_mounted_at_its_copy(place):
    source, copy = place.pictures / "photo.gif", place.pictures / "photo.png"
    pictures.make(source)
    copy.touch()
    with mounted("--bind", source, copy):
        refused(place, "photo.gif", source)
    equal(copy.read_bytes(), b"", "what the mount hid")


def copy_mounted_at_its_source(place):
    source, copy = place.pictures / "photo.gif", place.pictures / "photo.png"
    pictures.make(copy)
    source.touch()
    before = about(copy)
    with mounted("--bind", copy, source):
        refused(place, "photo.gif", source)
    equal(about(copy), before, "the file that was mounted")


def link_through_a_mounted_folder(place):
    folder = place.pictures / "real"
    album = place.pictures / "album"
    folder.mkdir()
    album.mkdir()
    pictures.make(folder / "photo.png")
    (folder / "photo.gif").symlink_to(folder / "photo.png")
    with mounted("--bind", folder, album):
        refused(place, "album/photo.gif", folder / "photo.png")


def mounted_folder(place):
    """A copy's name that leads to the source, both in a mounted folder, is replaced as a link."""
    folder, album = place.pictures / "real", place.pictures / "album"
    folder.mkdir()
    album.mkdir()
    pictures.make(folder / "photo.gif")
    (folder / "photo.png").symlink_to(folder / "photo.gif")
    before = about(folder / "photo.gif")
    with mounted("--bind", folder, album):
        convert(place, ["album/photo.gif"], 0)
    equal(about(folder / "photo.gif"), before, "the source")
    equal(pictures.complaints(folder / "photo.png"), "", "pngcheck on the copy")


own_mounts()
SIZES = int(option("--sizes", 16))
check(
    [
        ("PNG copies on filling disks", filling(".png", "ConversionPNG=OK\n", SIZES)),
        (
            "JPEG copies on filling disks",
            filling(".jpg", "ConversionPNG=ko\nConversionJPG=OK\nTauxJPG=100\n", SIZES),
        ),
        ("the source mounted at its copy's name", source_mounted_at_its_copy),
        ("the copy mounted at its source's name", copy_mounted_at_its_source),
        ("a link to the copy through a mounted folder", link_through_a_mounted_folder),
        ("a link to the source in a mounted folder", mounted_folder),
    ]
)
