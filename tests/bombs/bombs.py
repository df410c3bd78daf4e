#!/usr/bin/python3
"""Small files that ask for much are refused, or decoded, within bounds: bombs.py PROBE [ROW...]

A refusal has to come within 5 s of processor time and 300 MiB; a picture may take its pixels besides.
"""

import os
import resource
import struct
import sys
import tempfile
import zlib
from pathlib import Path

from recipes import (
    ALL_ZERO_BLOCKS,
    GIF_DOT,
    LONG,
    MEGA,
    SHORT,
    chunk,
    deflated_zeros,
    exif,
    gif,
    gif_frame,
    icc,
    icc_in_jpeg,
    jpeg,
    jpeg_scan,
    pict,
    pict_rect,
    pict_region,
    pict_still,
    png,
    png_dot,
    progressive,
    segment,
    tiff,
    tiff_page,
    tiff_strip,
    xz_of_huge_window,
)

NOT_BUILT = 77
MOST_SECONDS, MOST_MEMORY = 5.0, 300 * MEGA
LONGEST = 60  # seconds of processor time, after which the system ends it
EXIF = b"Exif\0\0"
ZEROS = bytes(50 * MEGA)


def flood(entries):
    """A directory with so many entries of unknown tags, each a long row of numbers outside of the file."""
    return tiff(tiff_page(1, 1) + [(40000 + index % 20000, LONG, 0x3FFFFFFF, 8) for index in range(entries)])


def chained(count):
    """So many empty thumbnails, each pointing at the next, and the last at the first."""
    body, size = b"", 2 + 2 * 12 + 4
    for index in range(count):
        following = 8 + size * ((index + 1) % count)
        body += struct.pack("<HHHIIHHII", 2, 254, LONG, 1, 1, 256, SHORT, 1, 1) + struct.pack("<I", following)
    return struct.pack("<2sHI", b"II", 42, 8) + body


def many_strips(rows):
    """Every row a strip of its own, and each of them the same deflated zeros."""
    packed = zlib.compress(bytes(30000))
    place = 8 + len(packed)
    places, sizes = struct.pack("<I", 8) * rows, struct.pack("<I", len(packed)) * rows
    page = [entry for entry in tiff_page(30000, rows, 8, rows=1) if entry[0] not in (273, 279)]
    page += [(273, LONG, rows, place), (279, LONG, rows, place + 4 * rows)]
    return tiff(page, packed + places + sizes)


def bmp(width, height):
    head = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, 0, 0, 0, 0, 0)
    return b"BM" + struct.pack("<IHHI", 54 + 64, 0, 0, 54) + head + bytes(64)


REFUSED, EITHER = ("refused",), ("refused", "decoded")

# (what it is, how it may end, its bytes)
BOMBS = [
    (
        "png-few-bytes-for-900-megapixels",
        REFUSED,
        lambda: png(30000, 30000, chunk(b"IDAT", zlib.compress(bytes(999)))),
    ),
    (
        "png-a-tenth-of-900-megapixels",
        REFUSED,
        lambda: png(30000, 30000, chunk(b"IDAT", deflated_zeros(360 * MEGA))),
    ),
    (
        "png-interlaced-few-bytes",
        REFUSED,
        lambda: png(32767, 32767, chunk(b"IDAT", zlib.compress(bytes(999))), depth=16, interlace=1),
    ),
    ("png-no-pixels", REFUSED, lambda: png(30000, 30000)),
    (
        "png-over-the-largest-side",
        REFUSED,
        lambda: png(0x7FFFFFFF, 0x7FFFFFFF, chunk(b"IDAT", zlib.compress(b""))),
    ),
    (
        "png-bilevel-36-megapixels",
        ("decoded",),
        lambda: png(6000, 6000, chunk(b"IDAT", deflated_zeros(6000 * 751)), depth=1, colour=0),
    ),
    (
        "png-10-gigabytes-behind-one-pixel",
        EITHER,
        lambda: png(1, 1, chunk(b"IDAT", deflated_zeros(10240 * MEGA)), colour=0),
    ),
    (
        "png-text-of-10-gigabytes",
        EITHER,
        lambda: png_dot(chunk(b"zTXt", b"Comment\0\0" + deflated_zeros(10240 * MEGA))),
    ),
    (
        "png-profile-of-10-gigabytes",
        EITHER,
        lambda: png_dot(chunk(b"iCCP", b"icc\0\0" + deflated_zeros(10240 * MEGA))),
    ),
    ("png-a-million-chunks", EITHER, lambda: png_dot(chunk(b"tEXt", b"a\0b") * 1_000_000)),
    (
        "png-a-million-empty-data-chunks",
        EITHER,
        lambda: png(1, 1, chunk(b"IDAT") * 1_000_000, chunk(b"IDAT", zlib.compress(b"\0\x80")), colour=0),
    ),
    (
        "png-a-million-palettes",
        EITHER,
        lambda: png(
            1, 1, chunk(b"PLTE", bytes(3)) * 1_000_000, chunk(b"IDAT", zlib.compress(b"\0\0")), colour=3
        ),
    ),
    (
        "png-chunk-longer-than-the-file",
        REFUSED,
        lambda: png(1, 1)[:-12] + struct.pack(">I", 0x7FFFFFFF) + b"IDAT",
    ),
    (
        "png-exif-of-50-megabytes",
        EITHER,
        lambda: png_dot(chunk(b"eXIf", exif((274, SHORT, 0xFFFFFFFF, 8)) + ZEROS)),
    ),
    ("gif-65535-squared", REFUSED, lambda: gif(65535, 65535, gif_frame(65535, 65535))),
    ("gif-frame-of-a-gigapixel-in-few-bytes", REFUSED, lambda: gif(32767, 32767, gif_frame(32767, 32767))),
    ("gif-frame-far-over-its-screen", EITHER, lambda: gif(1, 1, gif_frame(65535, 65535))),
    ("gif-a-million-empty-frames", EITHER, lambda: gif(1, 1, gif_frame(0, 0) * 1_000_000, GIF_DOT)),
    ("gif-a-million-controls", EITHER, lambda: gif(1, 1, b"!\xf9\x04\1\0\0\0\0" * 1_000_000, GIF_DOT)),
    (
        "gif-comment-of-50-megabytes",
        EITHER,
        lambda: gif(1, 1, b"!\xfe" + (b"\xff" + b"x" * 255) * 200_000 + b"\0", GIF_DOT),
    ),
    (
        "gif-nothing-but-clear-codes",
        REFUSED,
        lambda: gif(100, 100, gif_frame(100, 100, b"\x07" + (b"\xff" + b"\x80" * 255) * 200_000)),
    ),
    ("tiff-few-bytes-for-900-megapixels", REFUSED, lambda: tiff_strip(30000, 30000, 1, bytes(64), samples=4)),
    ("tiff-fax-few-bytes", REFUSED, lambda: tiff_strip(30000, 30000, 4, b"\xff" * 64, bits=1)),
    ("tiff-fax-of-36-megapixels", ("decoded",), lambda: tiff_strip(6000, 6000, 4, b"\xff" * 752, bits=1)),
    ("tiff-lzw-few-bytes", REFUSED, lambda: tiff_strip(30000, 30000, 5, b"\x80\x00\x20" * 9)),
    ("tiff-deflate-few-bytes", REFUSED, lambda: tiff_strip(30000, 30000, 8, zlib.compress(bytes(9999)))),
    ("tiff-packbits-few-bytes", REFUSED, lambda: tiff_strip(30000, 30000, 32773, b"\x81\0" * 99)),
    (
        "tiff-jbig-few-bytes",
        REFUSED,
        lambda: tiff_strip(
            30000,
            30000,
            34661,
            struct.pack(">BBBBIIIBBBB", 0, 0, 1, 0, 30000, 30000, 30000, 0, 0, 3, 0) + bytes(9),
            bits=1,
        ),
    ),
    (
        "tiff-dictionary-of-4-gigabytes",
        EITHER,
        lambda: tiff_strip(100, 100, 34925, xz_of_huge_window(bytes(10000))),
    ),
    (
        "tiff-strip-inflates-to-10-gigabytes",
        EITHER,
        lambda: tiff_strip(8, 8, 8, deflated_zeros(10240 * MEGA)),
    ),
    ("tiff-a-tag-flood", EITHER, lambda: flood(60000)),
    (
        "tiff-strips-for-a-billion-rows",
        REFUSED,
        lambda: tiff(
            tiff_page(8, 30000, rows=1)[:5]
            + [(273, LONG, 0x3FFFFFFF, 8), (277, SHORT, 1, 1), (278, LONG, 1, 1), (279, LONG, 0x3FFFFFFF, 8)],
            bytes(64),
        ),
    ),
    ("tiff-one-strip-a-thousand-times", ("decoded",), lambda: many_strips(1000)),
    (
        "tiff-tile-of-a-gigapixel",
        REFUSED,
        lambda: tiff(
            [entry for entry in tiff_page(100, 100) if entry[0] not in (273, 278, 279)]
            + [(322, LONG, 1, 0x7FFFFFF0), (323, LONG, 1, 0x7FFFFFF0), (324, LONG, 1, 8), (325, LONG, 1, 64)],
            bytes(64),
        ),
    ),
    ("tiff-directory-of-itself", EITHER, lambda: tiff(tiff_page(0, 0), bytes(64), following=72)),
    ("tiff-sixty-thousand-directories-in-a-ring", REFUSED, lambda: chained(60000)),
    ("tiff-child-of-itself", EITHER, lambda: tiff(tiff_page(0, 0, more=[(330, LONG, 1, 72)]), bytes(64))),
    (
        "tiff-profile-longer-than-the-file",
        EITHER,
        lambda: tiff(tiff_page(8, 8, more=[(34675, 7, 0x7FFFFFFF, 8)]), bytes(64)),
    ),
    ("tiff-65535-samples", REFUSED, lambda: tiff(tiff_page(30000, 30000, samples=65535), bytes(64))),
    ("jpeg-few-bytes-for-a-gigapixel", REFUSED, lambda: jpeg(32767, 32767, ALL_ZERO_BLOCKS)),
    (
        "jpeg-progressive-few-bytes",
        REFUSED,
        lambda: jpeg(32767, 32767, jpeg_scan([1, 2, 3], 0, 0) + bytes(64), mark=0xC2),
    ),
    ("jpeg-over-the-largest-side", REFUSED, lambda: jpeg(65500, 65500, ALL_ZERO_BLOCKS)),
    ("jpeg-ten-thousand-scans", REFUSED, lambda: progressive(2000, 2000, 10000)),
    ("jpeg-hundred-thousand-scans-of-a-small-picture", EITHER, lambda: progressive(64, 64, 100_000)),
    (
        "jpeg-thousand-scans-without-data",
        REFUSED,
        lambda: jpeg(
            8000, 8000, jpeg_scan([1, 2, 3], 0, 0) + bytes(64), jpeg_scan([1], 1, 63) * 1000, mark=0xC2
        ),
    ),
    (
        "jpeg-scans-of-a-sequential-picture",
        REFUSED,
        lambda: jpeg(8000, 8000, (jpeg_scan([1], 0, 63) + bytes(250_000)) * 200),
    ),
    (
        "jpeg-a-million-comments",
        EITHER,
        lambda: jpeg(8, 8, ALL_ZERO_BLOCKS, before=segment(0xFE, b"x") * 1_000_000),
    ),
    (
        "jpeg-a-million-tables",
        EITHER,
        lambda: jpeg(8, 8, ALL_ZERO_BLOCKS, before=segment(0xC4, bytes([0x00, 1] + [0] * 16)) * 1_000_000),
    ),
    (
        "jpeg-profile-of-16-megabytes",
        EITHER,
        lambda: jpeg(8, 8, ALL_ZERO_BLOCKS, before=icc_in_jpeg(icc(16 * MEGA))),
    ),
    (
        "jpeg-profile-that-tells-4-gigabytes",
        EITHER,
        lambda: jpeg(8, 8, ALL_ZERO_BLOCKS, before=icc_in_jpeg(icc(1000, told=0xFFFFFFFF))),
    ),
    (
        "jpeg-profile-with-a-million-tags",
        EITHER,
        lambda: jpeg(
            8,
            8,
            ALL_ZERO_BLOCKS,
            before=icc_in_jpeg(
                icc(128) + struct.pack(">I", 1_000_000) + b"A2B0\0\0\0\x80\x7f\xff\xff\xff" * 1_000_000
            ),
        ),
    ),
    (
        "jpeg-exif-of-four-billion-numbers",
        EITHER,
        lambda: jpeg(8, 8, ALL_ZERO_BLOCKS, before=segment(0xE1, EXIF + exif((274, SHORT, 0xFFFFFFFF, 8)))),
    ),
    (
        "jpeg-exif-in-a-ring",
        EITHER,
        lambda: jpeg(
            8, 8, ALL_ZERO_BLOCKS, before=segment(0xE1, EXIF + exif((34665, LONG, 1, 8), following=8))
        ),
    ),
    (
        "jpeg-a-thousand-exif-blocks",
        EITHER,
        lambda: jpeg(
            8,
            8,
            ALL_ZERO_BLOCKS,
            before=segment(0xE1, EXIF + exif(*[(index, LONG, 1, 8) for index in range(5000)])) * 1000,
        ),
    ),
    ("pict-frame-of-a-gigapixel-and-no-drawing", REFUSED, lambda: pict(32767, 32767)),
    ("pict-frame-of-a-gigapixel", REFUSED, lambda: pict(32767, 32767, b"\x00\x90" + bytes(20))),
    (
        "pict-a-large-frame-painted-again-and-again",
        REFUSED,
        lambda: pict(7000, 7000, pict_rect(0x31, 1, 7000) * 1_000_000),
    ),
    (
        "pict-large-frame-drawn-on-and-cut",
        REFUSED,
        lambda: pict(32767, 8000, pict_rect(0x31, 100, 100), bytes(400_000), b"\x00\x90"),
    ),
    ("pict-fifty-million-nops", EITHER, lambda: pict(8, 8, ZEROS)),
    (
        "pict-a-million-painted-frames",
        EITHER,
        lambda: pict(2000, 2000, pict_rect(0x31, 2000, 2000) * 1_000_000),
    ),
    ("pict-a-million-ovals-outside", EITHER, lambda: pict(8, 8, pict_rect(0x51, 32767, 32767) * 1_000_000)),
    ("pict-a-thousand-large-regions", EITHER, lambda: pict(2000, 2000, pict_region(3000) * 1000)),
    (
        "pict-region-of-64-kilobytes-lying",
        REFUSED,
        lambda: pict(100, 100, struct.pack(">HH", 0x0081, 0xFFFF)),
    ),
    (
        "pict-a-million-lines",
        EITHER,
        lambda: pict(2000, 2000, struct.pack(">HHHHH", 0x20, 0, 0, 2000, 2000) * 1_000_000),
    ),
    (
        "pict-a-million-letters",
        EITHER,
        lambda: pict(2000, 2000, struct.pack(">HH", 0x0D, 2000), b"\x00\x28\0\0\0\0\x01W" * 1_000_000),
    ),
    (
        "pict-pixels-of-a-gigapixel-in-few-bytes",
        REFUSED,
        lambda: pict(
            100,
            100,
            struct.pack(
                ">HIHHHHHHHIIIHHHHIII",
                0x9A,
                255,
                0xFFFC,
                0,
                0,
                32767,
                16383,
                0,
                4,
                0,
                72 << 16,
                72 << 16,
                16,
                32,
                3,
                8,
                0,
                0,
                0,
            )
            + bytes(64),
        ),
    ),
    (
        "pict-a-thousand-stills-of-few-bytes",
        EITHER,
        lambda: pict(2000, 2000, (b"\x82\x00" + struct.pack(">I", 1000) + bytes(1000)) * 1000),
    ),
    (
        "pict-three-hundred-stills-of-25-megapixels",
        REFUSED,
        lambda: pict(
            64,
            64,
            pict_still(
                b"png ",
                png(5000, 5000, chunk(b"IDAT", deflated_zeros(5000 * 5001)), depth=8, colour=0),
                5000,
                5000,
            )
            * 300,
        ),
    ),
    (
        "pict-still-of-a-gigapixel",
        REFUSED,
        lambda: pict(
            64,
            64,
            pict_still(
                b"png ",
                png(32000, 32000, chunk(b"IDAT", deflated_zeros(32000 * 32001)), depth=8, colour=0),
                32000,
                32000,
            ),
        ),
    ),
    ("bmp-few-bytes-for-900-megapixels", REFUSED, lambda: bmp(30000, 30000)),
    ("ppm-few-bytes-for-900-megapixels", EITHER, lambda: b"P6 30000 30000 255\n" + bytes(64)),
    (
        "xpm-few-bytes-for-900-megapixels",
        REFUSED,
        lambda: b'/* XPM */\nstatic char*x[]={"30000 30000 1 1","a c #000000","aaaa"};',
    ),
]


def probed(probe, path, said):
    """How opening the file ends: (status, what was said, seconds, bytes)."""
    child = os.fork()
    if child == 0:
        resource.setrlimit(resource.RLIMIT_CPU, (LONGEST, LONGEST))
        os.dup2(os.open(said, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600), 1)
        os.execv(probe, [probe, path])
    _, status, used = os.wait4(child, 0)
    fields = Path(said).read_text(errors="replace").rstrip("\n").split("\t")[1:]
    return os.waitstatus_to_exitcode(status), fields, used.ru_utime + used.ru_stime, used.ru_maxrss * 1024


def pixel_bytes(fields):
    """The memory that a decoded picture's own pixels take."""
    if fields[0] != "decoded":
        return 0
    width, height = map(int, fields[1].split("x"))
    return 4 * width * height


def fault(status, fields, seconds, memory, endings):
    """What is wrong with an ending; empty when nothing is."""
    if status != 0:
        return f"ended with status {status}"
    if fields[0] not in endings:
        return f"was {fields[0]}"
    if seconds > MOST_SECONDS:
        return "took too long"
    return "took too much memory" if memory > MOST_MEMORY + pixel_bytes(fields) else ""


def main():
    probe, *wanted = sys.argv[1:]
    if not os.access(probe, os.X_OK):
        print(f"not built: {probe}")
        return NOT_BUILT
    faults = 0
    with tempfile.TemporaryDirectory(prefix="veltrane-bombs-") as folder:
        for name, endings, recipe in BOMBS:
            if wanted and not any(part in name for part in wanted):
                continue
            path = os.path.join(folder, "bomb")
            Path(path).write_bytes(recipe())
            status, fields, seconds, memory = probed(probe, path, os.path.join(folder, "said"))
            wrong = fault(status, fields, seconds, memory, endings)
            faults += bool(wrong)
            print(
                f"{'FAILED ' if wrong else 'ok     '} {name}: {os.path.getsize(path)} bytes, "
                f"{seconds:.2f} s, {memory // MEGA} MiB: {' '.join(fields[:3])} {wrong}",
                flush=True,
            )
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
