#!/usr/bin/python3
"""Pictures given at the start are converted, counted and shown."""

import pictures
from table import both_ticked, check, equal, names, until

FIVE = ["a.jpg", "b.gif", "c.png", "d.jpeg", "readme.tif"]


def make_five(place):
    for name in FIVE[:-1]:
        pictures.make(place.pictures / name)
    pictures.make(place.pictures / FIVE[-1], pictures.BLUE)


def convert_five(place):
    make_five(place)
    both_ticked(place)
    with place.start(*FIVE) as program:
        program.idle(5)
        equal(program.close(), 0, "exit status")


def five_copies(place):
    make_five(place)
    before = {name: pictures.digest(place.pictures / name) for name in FIVE}
    both_ticked(place)
    with place.start(*FIVE) as program:
        program.idle(5)
        equal(program.title(), "Veltrane V2 : readme.tif", "title")
        equal(
            "5 fichiers traités depuis l'ouverture." in program.labels(),
            True,
            "the count's own text is shown",
        )
        equal(program.close(), 0, "exit status")
    outputs = ["a.png", "b.png", "b.jpg", "c.jpg", "d.png", "d.jpg", "readme.tif.png", "readme.tif.jpg"]
    equal(names(place.pictures), sorted(name.encode() for name in FIVE + outputs), "the folder")
    equal({name: pictures.digest(place.pictures / name) for name in FIVE}, before, "the sources")


def exact_png(place):
    convert_five(place)
    for source, copy in [
        ("a.jpg", "a.png"),
        ("b.gif", "b.png"),
        ("d.jpeg", "d.png"),
        ("readme.tif", "readme.tif.png"),
    ]:
        equal(pictures.complaints(place.pictures / copy), "", f"pngcheck on {copy}")
        same = pictures.pixels(place.pictures / source) == pictures.pixels(place.pictures / copy)
        equal(same, True, f"{copy} holds the pixels of {source}")


def sound_jpeg(place):
    convert_five(place)
    for source, copy in [
        ("b.gif", "b.jpg"),
        ("c.png", "c.jpg"),
        ("d.jpeg", "d.jpg"),
        ("readme.tif", "readme.tif.jpg"),
    ]:
        equal(pictures.complaints(place.pictures / copy), "", f"djpeg on {copy}")
        equal(pictures.quality(place.pictures / copy), 70, f"quality of {copy}")
        apart = pictures.far_apart(place.pictures / source, place.pictures / copy)
        equal(apart < 8, True, f"{copy} is like {source} (apart by {apart:.1f})")


def last_picture_shown(place):
    make_five(place)
    with place.start(*FIVE) as program:
        program.idle(5)
        left, top, width, height = program.find("image").box
        middle = left + width // 2, top + height // 2
        until(
            lambda: place.screen.pixel(*middle) == pictures.BLUE, "the last picture's colour in the preview"
        )
        # It is smaller than the canvas, which is white around it.
        equal(place.screen.pixel(left + 5, top + 5), (255, 255, 255), "beside the picture")


def nothing_given(place):
    with place.start() as program:
        program.idle(0)
        equal(program.title(), "Veltrane V2", "title")
        equal(program.close(), 0, "exit status")


def only_ticked_formats(place):
    make_five(place)
    place.prefer("ConversionJPG=OK\nConversionPNG=ko\nTauxJPG=70\n")
    with place.start("b.gif") as program:
        program.idle(1)
    equal(names(place.pictures), sorted(name.encode() for name in FIVE + ["b.jpg"]), "the folder")


def address_given(place):
    pictures.make(place.pictures / "a b.gif")
    with place.start((place.pictures / "a b.gif").as_uri()) as program:
        program.idle(1)
        equal(program.title(), "Veltrane V2 : a b.gif", "title")
    equal(names(place.pictures), [b"a b.gif", b"a b.png"], "the folder")


def many_documents(place):
    wanted = []
    for number in range(60):
        pictures.make(place.pictures / f"{number}.gif", pictures.GREEN)
        wanted += [f"{number}.gif".encode(), f"{number}.png".encode()]
    with place.start(*[f"{number}.gif" for number in range(60)]) as program:
        program.idle(60)
        equal(program.title(), "Veltrane V2 : 59.gif", "title")
    equal(names(place.pictures), sorted(wanted), "the folder")


check(
    [
        ("five documents leave exactly their copies", five_copies),
        ("a PNG holds its source's pixels exactly", exact_png),
        ("a JPEG is sound, of the quality set, and like its source", sound_jpeg),
        ("the preview shows the last picture", last_picture_shown),
        ("without a document the window opens and waits", nothing_given),
        ("a box that is clear writes nothing", only_ticked_formats),
        ("an address is taken for the file that it names", address_given),
        ("sixty documents are all taken in, in their order", many_documents),
    ]
)
