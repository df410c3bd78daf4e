#!/usr/bin/python3
"""Five hundred files with bad ones among them: nothing is skipped, nothing is said twice."""

import random

import pictures
from drags import Drag, uri_list
from table import check, equal, names, until

FILES = 500
ALWAYS_BAD = (0, 1, 250, 498, 499)  # at the ends, and two in a row
SOME_BAD = 12


def bad_bytes(number):
    """One kind of damage after the other."""
    kinds = (
        b"",
        b"GIF89a",
        b"no picture at all",
        b"GIF89a\xff\xff\xff\xff\x00\x00\x00,\x00\x00\x00\x00\xff\xff\xff\xff\x00",
    )
    return kinds[number % len(kinds)]


def lay(place, bad):
    files = [place.pictures / f"{number:03}.gif" for number in range(FILES)]
    for number, file in enumerate(files):
        if number in bad:
            file.write_bytes(bad_bytes(number))
        else:
            pictures.make(file)
    return files


def documents(place):
    seed = random.randrange(1 << 32)
    print(f"        seed {seed}", flush=True)
    bad = sorted({*ALWAYS_BAD, *random.Random(seed).sample(range(FILES), SOME_BAD)})
    files = lay(place, bad)
    with place.start(*[file.name for file in files]) as program:
        for number in bad:
            message = program.answer()
            equal(f"« {number:03}.gif »" in message, True, f"the message for {number} ({message})")
        program.idle(FILES - len(bad))
        equal(program.message(), None, "a further message")
        equal(program.close(), 0, "exit status")
    copies = [file.with_suffix(".png") for number, file in enumerate(files) if number not in bad]
    found = sorted([path.name.encode() for path in [*files, *copies]])
    equal(names(place.pictures), found, "the folder")
    equal(len({pictures.digest(copy) for copy in copies}), 1, "different copies of one picture")


def drop(place):
    bad = 300
    files = lay(place, [bad])
    with place.start() as program:
        with Drag(place, uri_list(files)) as drag:
            drag.drop_on(program)
        message = program.answer()
        wanted = f"« {bad}.gif »" in message and f"{FILES - bad - 1} éléments" in message
        equal(wanted, True, f"file and rest in the message ({message})")
        program.idle(bad)
        equal(program.message(), None, "a further message")
        with Drag(place, uri_list(files[bad + 1 : bad + 2])) as drag:
            drag.drop_on(program)
        until(lambda: program.taken() == bad + 1, "the next drop")
        equal(program.close(), 0, "exit status")
    copies = [file.with_suffix(".png").name.encode() for file in [*files[:bad], files[bad + 1]]]
    equal(names(place.pictures), sorted([file.name.encode() for file in files] + copies), "the folder")


check(
    [
        ("documents: a message for each bad one, a copy of each other", documents),
        ("a drop: it ends at the bad one and says how many are left", drop),
    ]
)
