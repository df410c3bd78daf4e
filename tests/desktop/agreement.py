#!/usr/bin/python3
"""What is said of the program in several places is the same in all: version, picture types, names.

    agreement.py SOURCES VERSION
"""

import configparser
import plistlib
import re
import struct
import sys
import xml.etree.ElementTree as xml
from pathlib import Path

NAME = "org.veltrane.veltrane"
# The declared type's name, and what desktops call it, the older names included.
ALSO = {"image/pict": {"image/x-pict", "image/pict", "image/x-macpict"}}


def entry(desktop):
    keys = configparser.ConfigParser(interpolation=None)
    keys.optionxform = str
    keys.read(desktop / f"{NAME}.desktop", encoding="utf-8")
    return keys["Desktop Entry"]


def listed(text):
    return [item for item in text.split(";") if item]


def declared(root):
    """The types that the program takes in, as desktops know them."""
    names = re.findall(r'\bImage::Image\w+, "(image/\w+)"', (root / "filetypes/Image.cpp").read_text())
    return set().union(*(ALSO.get(name, {name}) for name in names))


def identifiers(root):
    """Their uniform identifiers."""
    return re.findall(
        r'\bImage::Image\w+, .*"([a-z]+\.[a-z.]+)" \}', (root / "filetypes/Image.cpp").read_text()
    )


def png_size(picture):
    return struct.unpack(">II", picture.read_bytes()[16:24])


def facts(root, version):
    """Pairs of what is told and what it has to be."""
    desktop = root / "desktop"
    keys = entry(desktop)
    metainfo = xml.parse(desktop / f"{NAME}.metainfo.xml").getroot()
    changes = (root / "CHANGELOG.md").read_text()
    types = set(listed(keys["MimeType"]))

    yield "the newest release in the metainfo", metainfo.find("releases/release").get("version"), version
    yield "the newest version in CHANGELOG.md", re.search(r"^## ([\d.]+)", changes, re.M)[1], version
    package = (root / "debian/changelog").read_text()
    yield "the newest version of the package", re.match(r"veltrane \(([\d.]+)\)", package)[1], version
    yield "the entry's types", types, declared(root)
    yield "the metainfo's types", {e.text for e in metainfo.iterfind("provides/mediatype")} | ALSO[
        "image/pict"
    ], types
    yield "the metainfo's categories", {e.text for e in metainfo.iterfind("categories/category")} | {
        "Qt"
    }, set(listed(keys["Categories"]))
    with open(desktop / "macos/Info.plist.in", "rb") as bundle:
        documents = plistlib.load(bundle)["CFBundleDocumentTypes"]
    yield "the bundle's documents", documents[0]["LSItemContentTypes"], identifiers(root)
    for key in ("GenericName", "Comment", "Keywords"):
        yield f"{key} in French", bool(keys.get(f"{key}[fr]")), True
    sizes = sorted(int(picture.stem) for picture in (desktop / "icons").glob("*.png"))
    yield "the icon's sizes", sizes, [16, 22, 24, 32, 48, 64, 128, 256, 512]
    for size in sizes:
        yield f"{size}.png", png_size(desktop / f"icons/{size}.png"), (size, size)


def main(root, version):
    wrong = [(what, told, wanted) for what, told, wanted in facts(root, version) if told != wanted]
    for what, told, wanted in wrong:
        print(f"{what}: {told}, not {wanted}")
    return 1 if wrong else 0


sys.exit(main(Path(sys.argv[1]), sys.argv[2]))
