#!/bin/sh
# Makes the pictures beside this script with netpbm, cjpeg and djpeg (libjpeg-turbo-progs), exiftool, and a
# few lines of C and Python. All show scene.ppm. The damaged ones are edited byte by byte at the end.
set -e
cd "$(dirname "$0")"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# 42 x 27: no multiple of a block. Smooth colours, a grey edge, nothing symmetrical.
python3 - > scene.ppm <<'PYTHON'
import sys
rows = [[(6 * x, 9 * y, 255 - 3 * x - 4 * y) if x + 2 * y < 70 else (200, 200, 200) for x in range(42)]
        for y in range(27)]
sys.stdout.buffer.write(b'P6 42 27 255\n' + bytes(v for row in rows for pixel in row for v in pixel))
PYTHON

make() { name=$1; shift; cjpeg -quality 95 "$@" scene.ppm > "$name.jpg"; }
make baseline-444 -sample 1x1
make baseline-420 -sample 2x2 -optimize
make baseline-422 -sample 2x1 -optimize
make sampling-440 -sample 1x2 -optimize
make sampling-odd -sample 3x1,1x1,1x2 -optimize
make progressive -sample 1x1 -progressive
make arithmetic -sample 1x1 -arithmetic
make arithmetic-progressive -sample 1x1 -arithmetic -progressive
make restart -sample 1x1 -restart 3B -optimize
make restart-420 -sample 2x2 -restart 1B -optimize
make rgb -rgb -optimize
printf '0;\n1;\n2;\n' > "$scratch/scans"
make scan-each -sample 1x1 -scans "$scratch/scans" -optimize
djpeg -ppm baseline-420.jpg > baseline-420.ppm
pnmtopnm < scene.ppm | ppmtopgm > "$scratch/grey.pgm"
cjpeg -quality 95 -optimize "$scratch/grey.pgm" > grey.jpg
djpeg -pnm -rgb grey.jpg > grey.ppm

# Stored so that the tag turns them upright.
turned() { pnmflip "$2" scene.ppm | cjpeg -quality 95 -sample 1x1 -optimize > "turned-$1.jpg"
    exiftool -q -overwrite_original -n "-Orientation=$1" "turned-$1.jpg"; }
turned 2 -lr
turned 3 -r180
turned 6 -ccw
turned 8 -cw
pnmflip -ccw scene.ppm > turned-6-as-stored.ppm

# Inks: cyan, magenta and yellow as what red, green and blue lack. Adobe's programs store them inverted.
cat > "$scratch/inks.c" <<'C'
#include <stdio.h>
#include <stdlib.h>
#include <jpeglib.h>
int main(int count, char** argument)
{
    (void)count;
    const int ycck = atoi(argument[1]), adobe = atoi(argument[2]);
    struct jpeg_compress_struct jpeg;
    struct jpeg_error_mgr errors;
    unsigned char row[4 * 42];
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, stdout);
    jpeg.image_width = 42, jpeg.image_height = 27, jpeg.input_components = 4, jpeg.in_color_space = JCS_CMYK;
    jpeg_set_defaults(&jpeg);
    jpeg_set_colorspace(&jpeg, ycck ? JCS_YCCK : JCS_CMYK);
    jpeg_set_quality(&jpeg, 97, TRUE);
    for (int i = 0; i < 4; ++i)
        jpeg.comp_info[i].h_samp_factor = jpeg.comp_info[i].v_samp_factor = 1;
    jpeg.optimize_coding = TRUE;
    jpeg.write_Adobe_marker = adobe;
    jpeg_start_compress(&jpeg, TRUE);
    for (scanf("P6 42 27 255"), getchar(); jpeg.next_scanline < jpeg.image_height;) {
        for (int x = 0; x < 42; ++x) {
            for (int i = 0; i < 3; ++i)
                row[4 * x + i] = adobe ? getchar() : 255 - getchar();
            row[4 * x + 3] = adobe ? 255 : 0;
        }
        JSAMPROW rows[] = { row };
        jpeg_write_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    return 0;
}
C
cc -w -o "$scratch/inks" "$scratch/inks.c" -ljpeg
"$scratch/inks" 0 1 < scene.ppm > cmyk-adobe.jpg
"$scratch/inks" 1 1 < scene.ppm > ycck-adobe.jpg
"$scratch/inks" 0 0 < scene.ppm > cmyk-plain.jpg

# Stored with red, green and blue exchanged; the profile puts them right.
pnmtopnm < scene.ppm | python3 -c "
import sys
data = sys.stdin.buffer.read()
head, rows = data[:-42 * 27 * 3], data[-42 * 27 * 3:]
sys.stdout.buffer.write(head + bytes(rows[i + (k + 1) % 3] for i in range(0, len(rows), 3) for k in range(3)))
" | cjpeg -quality 98 -sample 1x1 -optimize > "$scratch/exchanged.jpg"

SCRATCH=$scratch exec python3 - <<'PYTHON'
import os

def read(name): return open(name, 'rb').read()
def write(name, data): open(name + '.jpg', 'wb').write(data)
def segment(marker, data): return bytes((0xFF, marker)) + (len(data) + 2).to_bytes(2, 'big') + data
def behind_start(data, more): return data[:2] + more + data[2:]

base, progressive, restart = read('baseline-444.jpg'), read('progressive.jpg'), read('restart.jpg')
start = base.index(b'\xff\xda')

# ---- to be decoded all the same
write('tail-of-garbage', base + b'\xff\xd8\xff\xe0 not a picture' * 3)
write('no-end-mark', base[:-2])
write('padding-before-end-mark', base[:-2] + bytes(40) + base[-2:])
write('garbage-between-segments', base[:20] + b'garbage' + base[20:])
write('fill-bytes', base[:20] + b'\xff' * 9 + base[20:])
write('progressive-no-end-mark', progressive[:-2])
write('exif-damaged', read('turned-6.jpg').replace(b'Exif\0\0MM\0*\0\0\0\x08', b'Exif\0\0MM\0*\0\xff\0\x08')
      .replace(b'Exif\0\0II*\0\x08\0', b'Exif\0\0II*\0\x08\xff'))
write('exif-twice', behind_start(read('turned-6.jpg'), segment(0xE1, b'Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12'
      b'\0\3\0\0\0\1\0\1\0\0\0\0\0\0')))

# ---- profiles in parts
icc, exchanged = read('../colour/rotated.icc'), read(os.environ['SCRATCH'] + '/exchanged.jpg')
def part(number, count, data): return segment(0xE2, b'ICC_PROFILE\0' + bytes((number, count)) + data)
parts = [part(2, 3, icc[200:300]), part(3, 3, icc[300:]), part(1, 3, icc[:200])]
write('profile-in-parts', behind_start(exchanged, b''.join(parts)))
write('profile-part-missing', behind_start(base, b''.join(parts[:2])))
write('profile-broken', behind_start(base, part(1, 1, icc[:300])))
write('profile-of-inks', behind_start(base, part(1, 1, read('../colour/inks.icc'))))

# ---- to be refused
write('bad-cut-in-half', base[:start + (len(base) - start) // 2])
write('bad-cut-in-last-block', base[:-12])
write('bad-cut-with-end-mark', base[:-40] + b'\xff\xd9')
write('bad-cut-in-header', base[:start])
write('bad-start-only', base[:2])
second = progressive.index(b'\xff\xc4', progressive.index(b'\xff\xda'))
write('bad-progressive-cut-between-scans', progressive[:second])
write('bad-progressive-cut-in-last-scan', progressive[:-6])
each = read('scan-each.jpg')
third = each.rindex(b'\xff\xda')
write('bad-component-missing', each[:third] + b'\xff\xd9')
write('bad-component-cut-off', each[:third])
arithmetic = read('arithmetic.jpg')
write('bad-arithmetic-cut', arithmetic[:-60])
mark = restart.index(b'\xff\xd1')
write('bad-restart-mark-missing', restart[:mark] + restart[mark + 2:])
write('bad-restart-mark-of-another-interval', restart[:mark] + b'\xff\xd4' + restart[mark + 2:])
write('bad-restart-bytes-left', restart[:mark] + b'\x12\x34' * 4 + restart[mark:])
write('bad-huffman-code', base[:start + 14] + b'\xff\0' * 10 + base[start + 34:])
frame = base.index(b'\xff\xc0')
def edit(at, data): return base[:at] + data + base[at + len(data):]
write('bad-12-bits', edit(frame + 4, b'\x0c'))
write('bad-lossless', edit(frame, b'\xff\xc3'))
write('bad-no-height', edit(frame + 5, b'\0\0'))
write('bad-65535-square', edit(frame + 5, b'\xff\xff\xff\xff'))
write('bad-65000-square', edit(frame + 5, b'\xfd\xe8\xfd\xe8'))

# A flat grey square whose AC coefficients come bit by bit, one coefficient a scan: each scan is a walk over
# the whole picture for some twenty bytes. ITU-T T.81, G.1.2.2: symbol 0xE0 begins a run of ends of band.
def scan(first, last, high, low, data):
    return segment(0xDA, bytes((1, 1, 0, first, last, high << 4 | low))) + data
def bits(text):
    text += '1' * (-len(text) % 8)
    return bytes(int(text[i:i + 8], 2) for i in range(0, len(text), 8)).replace(b'\xff', b'\xff\0')
def slow(name, side, scans):
    blocks = ((side + 7) // 8) ** 2
    runs = ''
    for run in [32767] * (blocks // 32767) + [blocks % 32767]:
        size = run.bit_length() - 1
        runs += f'{size:04b}' + (f'{run - (1 << size):0{size}b}' if size else '')
    data = b'\xff\xd8' + segment(0xDB, b'\0' + b'\x10' * 64)
    data += segment(0xC2, b'\x08' + side.to_bytes(2, 'big') * 2 + b'\1\1\x11\0')
    data += segment(0xC4, b'\0\1' + bytes(15) + b'\0') # DC: difference 0 is one bit
    data += segment(0xC4, b'\x10\0\0\0\x0f' + bytes(12) + bytes(r << 4 for r in range(15))) # AC: 4 bits each
    data += scan(0, 0, 0, 0, bits('0' * blocks))
    steps = [(k, 0 if low == 13 else low + 1, low) for k in range(1, 64) for low in range(13, -1, -1)]
    for k, high, low in steps[:scans - 1]:
        data += scan(k, k, high, low, bits(runs))
    write(name, data + b'\xff\xd9')
slow('scans-many-of-a-small-picture', 16, 800)
slow('bad-scans-without-end', 3000, 800)
PYTHON
