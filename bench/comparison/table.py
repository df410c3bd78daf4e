"""The rows: which work, beside which peer, and the numbers that it must and that we aim to reach."""

import dataclasses

SMALLEST = "the smallest"


@dataclasses.dataclass(frozen=True)
class Row:
    """Conversions of one kind. The bounds are ratios: ours over the peer's."""

    key: str
    work: str
    form: str  # of the corpus
    suffix: str  # what is written
    cpu_peer: str
    bytes_peer: str
    must: tuple  # CPU, bytes
    aim: tuple
    psnr: bool = False  # held to the CPU's peer within PSNR_WITHIN


PSNR_WITHIN = 0.15  # dB
PICTURE_WITHIN = 1.10  # each picture, of the row's bound


def _photos(key, work, form, must, aim):
    return Row(key, work, form, "png", "sharp", "ImageMagick", must, aim)


ROWS = (
    _photos("baseline", "large photo, baseline JPEG to PNG", "baseline", (0.22, 1.03), (0.18, 1.00)),
    _photos("progressive", "the same from a progressive JPEG", "progressive", (0.50, 1.03), (0.40, 1.00)),
    _photos("small", "300 JPEGs of 640 x 480 to PNG, one run", "small", (0.35, 1.08), (0.25, 1.05)),
    _photos("tiff-none", "TIFF to PNG, not compressed", "tiff-none", (0.30, 1.09), (0.25, 1.05)),
    _photos("tiff-deflate", "TIFF to PNG, Deflate", "tiff-deflate", (0.30, 1.09), (0.25, 1.05)),
    _photos("tiff-lzw", "TIFF to PNG, LZW", "tiff-lzw", (0.38, 1.09), (0.25, 1.05)),
    Row(
        "photos-jpeg", "large photo, PNG to JPEG q70", "photos-png", "jpg",
        "sharp", "sharp", (0.60, 1.01), (0.50, 0.99), psnr=True,
    ),
    Row(
        "graphics-jpeg", "screenshots and drawings, PNG to JPEG q70", "graphics-png", "jpg",
        "Qt", "Qt", (0.60, 1.00), (0.45, 0.95),
    ),
    Row(
        "graphics-tiff", "screenshots and drawings, TIFF to PNG", "graphics-tiff", "png",
        "Pillow", SMALLEST, (0.60, 1.00), (0.40, 0.90),
    ),
    Row(
        "graphics-gif", "screenshots and drawings, GIF to PNG", "graphics-gif", "png",
        "Pillow", SMALLEST, (0.60, 1.00), (0.40, 0.90),
    ),
)  # fmt: skip


@dataclasses.dataclass(frozen=True)
class Single:
    """One number held to a bound."""

    key: str
    work: str
    peer: str
    must: float
    aim: float
    unit: str = ""


SINGLES = (
    Single("decodes", "both boxes on: decodes of one file", "", 1, 1),
    Single("peak", "peak memory, 20-megapixel baseline JPEG to PNG and JPEG", "ImageMagick", 1.0, 0.7),
    Single("resident", "resident size at file 300 of 300, over file 50", "", 10, 10, "MiB"),
    Single("startup", "process start to window shown", "a bare Qt window", 1.20, 1.05),
)
