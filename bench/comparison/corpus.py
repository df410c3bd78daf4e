"""Real photos and graphics out of Debian's packages, in the forms that the rows ask for.

Everything is made once and kept in the cache; nothing of it belongs to the project.
"""

import random
import shutil
import subprocess

from .machine import CACHE, run

PACKAGES = (
    "lomiri-wallpapers-20.04 mate-backgrounds plasma-workspace-wallpapers ukui-wallpapers "
    "kicad-doc-en marble-data stellarium-data"
).split()
FORM = 1  # to be raised with any change of a recipe

LOMIRI = "lomiri-wallpapers-20.04/usr/share/backgrounds/"
MATE = "mate-backgrounds/usr/share/backgrounds/mate/nature/"
PLASMA = "plasma-workspace-wallpapers/usr/share/wallpapers/%s/contents/images/2560x1600.jpg"
UKUI = "ukui-wallpapers/usr/share/backgrounds/"
STARS = "stellarium-data/usr/share/stellarium/"
KICAD = "kicad-doc-en/usr/share/doc/kicad/help/en/images/"
MARBLE = "marble-data/usr/share/doc/HTML/"

# 4 to 20 megapixels, sharp and soft, dark and bright.
PHOTOS = {
    "tree": LOMIRI + "Kleiber_by_Lukas_Baubkus.jpg",
    "sea": LOMIRI + "Infinite-Sea_by_Aury88.jpg",
    "beach": (PLASMA % "Volna").replace("2560x1600", "5120x2880"),
    "moon": STARS + "textures/moon_4k.jpg",
    "forest": PLASMA % "Path",
    "moss": PLASMA % "OneStandsOut",
    "boats": PLASMA % "EveningGlow",
    "planks": PLASMA % "BytheWater",
    "leaf": PLASMA % "FallenLeaf",
    "seeds": MATE + "TwoWings.jpg",
    "flower": MATE + "Garden.jpg",
    "cups": PLASMA % "ColorfulCups",
}
# Besides those above, for the small ones.
MORE_PHOTOS = (
    *(MATE + name for name in ("Wood.jpg", "Aqua.jpg", "LadyBird.jpg", "YellowFlower.jpg")),
    *(PLASMA % name for name in ("DarkestHour", "summer_1am", "Kite", "ColdRipple", "Grey")),
)
TIFFS = "tree moon forest leaf seeds cups".split()
GRAPHICS = {
    "gerbers": KICAD + "gerbview_main_screen.png",
    "commands": KICAD + "en/commands_overview.png",
    "placement": KICAD + "en/component_during_placement.png",
    "footprints": KICAD + "en/cvpcb_main_window.png",
    "measure": MARBLE + "en/marble/measure-1.png",
    "download": MARBLE + "en/marble/download-region-3.png",
    "routing": MARBLE + "ru/marble/routing-3.png",
    "paper": UKUI + "rollpaper.png",
    "map": STARS + "skycultures/lokono/lokono_map_1.png",
    "goose": STARS + "skycultures/belarusian/the-goose_s-way.png",
    "wagon": STARS + "skycultures/egyptian_dendera/uma_wagon+fox+ewe+yoke.png",
    "eagle": STARS + "skycultures/babylonian_mulapin/Eagle_bg.png",
    "brolga": STARS + "skycultures/boorong/gellarlec.png",
    "codex": STARS + "skycultures/maya/sdc.png",
}


def source(path):
    return CACHE / "raw" / path


def unpack():
    """The packages' files, below the cache; nothing is installed."""
    for package in PACKAGES:
        target = CACHE / "raw" / package
        if target.is_dir():
            continue
        fresh = target.with_suffix(".new")
        shutil.rmtree(fresh, ignore_errors=True)
        fresh.mkdir(parents=True)
        run("apt-get", "download", package, cwd=fresh)
        (archive,) = fresh.glob("*.deb")
        run("dpkg", "-x", archive, fresh)
        archive.unlink()
        fresh.rename(target)


def baseline(folder):
    for name, path in PHOTOS.items():
        target = folder / f"{name}.jpg"
        if "Interlace: None" in run("identify", "-verbose", source(path)):
            shutil.copyfile(source(path), target)
        else:
            run("jpegtran", "-copy", "all", "-outfile", target, source(path))


def progressive(folder):
    for name, path in PHOTOS.items():
        run("jpegtran", "-copy", "all", "-progressive", "-outfile", folder / f"{name}.jpg", source(path))


def photos_as_png(folder):
    for name, path in PHOTOS.items():
        run("convert", source(path), folder / f"{name}.png")


def small(folder):
    """300 pieces of photos at half their size, and the photos whole: nothing of it is random but the places."""
    places = random.Random(300)
    photos = [*PHOTOS.values(), *MORE_PHOTOS]
    for number in range(len(photos)):
        count = 300 // len(photos) + (number < 300 % len(photos))
        path = source(photos[number])
        width, height = map(int, run("identify", "-format", "%w %h", path).split())
        whole = ["-resize", "640x480^", "-gravity", "center", "-extent", "640x480"]
        pieces = [
            ["-crop", f"1280x960+{places.randint(0, width - 1280)}+{places.randint(0, height - 960)}", "+repage"]
            + ["-resize", "640x480!"]
            for _ in range(count - 1)
        ]
        command = ["convert", path, "-quality", "85"]
        for piece, how in enumerate([whole, *pieces]):
            target = folder / f"{number:02}-{piece:02}.jpg"
            command += ["(", "+clone", *how, "-write", target, "+delete", ")"]
        run(*command, "null:")


def photos_as_tiff(compression):
    def build(folder):
        for name in TIFFS:
            run("convert", source(PHOTOS[name]), "-compress", compression, folder / f"{name}.tif")

    return build


def graphics(suffix, *how):
    def build(folder):
        for name, path in GRAPHICS.items():
            run("convert", source(path), "-strip", *how, folder / f"{name}.{suffix}")

    return build


FORMS = {
    "baseline": baseline,
    "progressive": progressive,
    "small": small,
    "photos-png": photos_as_png,
    "tiff-none": photos_as_tiff("None"),
    "tiff-deflate": photos_as_tiff("Zip"),
    "tiff-lzw": photos_as_tiff("LZW"),
    "graphics-png": graphics("png", "-background", "white", "-flatten"),
    "graphics-tiff": graphics("tif", "-compress", "Zip"),
    "graphics-gif": graphics("gif"),
}


def pictures(form):
    """The files of one form, made when they are not there yet."""
    unpack()
    target = CACHE / "corpus" / f"{form}-{FORM}"
    if not target.is_dir():
        print("making the pictures:", form, flush=True)
        fresh = target.with_suffix(".new")
        shutil.rmtree(fresh, ignore_errors=True)
        fresh.mkdir(parents=True)
        FORMS[form](fresh)
        fresh.rename(target)
    return sorted(path for path in target.iterdir() if path.is_file())


def trivial(folder, suffix):
    """A picture of one pixel, for what a tool takes without work."""
    target = folder / f"trivial.{suffix}"
    subprocess.run(["convert", "-size", "1x1", "xc:orange", target], check=True)
    return target
