#!/bin/sh
# Makes the pictures beside it: ImageMagick and libtiff's tools encode the ordinary ones, make.py writes the
# odd ones byte by byte. Each NAME.pam holds the pixels that the files tests/imaging/tiff/TestTiff.cpp pairs with it must
# give. Run by hand; the results are kept, so that the tests need none of these tools.
set -eu
cd "$(dirname "$0")"
rm -f ./*.tif ./*.pam
python3 make.py sources

convert scene.pam -compress none -define tiff:rows-per-strip=4 plain.tif
tiffcp -c none -B plain.tif big-endian.tif
tiffcp -c none -8 plain.tif bigtiff.tif
tiffcp -c none -8 -B -p separate plain.tif bigtiff-planes.tif
tiffcp -c none -t -w 16 -l 16 plain.tif tiles.tif
tiffcp -c lzw:2 -r 5 plain.tif lzw-predictor.tif
tiffcp -c lzw -f lsb2msb plain.tif lzw-lsb.tif
convert scene.pam -depth 16 -compress none wide.tif
tiffcp -B -c lzw:2 wide.tif lzw-16-bits.tif
rm wide.tif
convert repeats.pam -alpha off -compress none repeats.tif
tiffcp -c lzw:1 -r 48 repeats.tif lzw-repeats.tif
tiffcp -c lzw:2 -t -w 32 -l 32 -p separate repeats.tif lzw-tiles-planes.tif
rm repeats.tif
tiffcp -c none -f lsb2msb plain.tif plain-lsb.tif
tiffcp -c zip:2 -t -w 16 -l 16 -p separate plain.tif deflate-tiles-planes.tif
tiffcp -c packbits -p separate plain.tif packbits-planes.tif
tiffcp -c zstd:2 plain.tif zstd.tif
tiffcp -c lzma plain.tif lzma.tif
tiffcp -c lerc plain.tif lerc.tif
tiffcp -c jpeg:r:98 -r 8 plain.tif jpeg-rgb.tif
tiffcp -c jpeg:r:98 -t -w 16 -l 16 plain.tif jpeg-rgb-tiles.tif
convert scene.pam -alpha off -compress JPEG -quality 98 jpeg-ycbcr.tif
convert scene.pam -compress WebP -quality 100 -define webp:lossless=true webp.tif
convert scene.pam -colors 16 -type Palette -compress LZW palette16.tif
convert palette16.tif -depth 8 -alpha on palette16.pam
convert scene.pam -alpha off -colors 200 -type Palette -compress none palette8.tif
convert palette8.tif -depth 8 -alpha on palette8.pam
for orientation in 1 2 3 4 5 6 7 8; do
    cp plain.tif "orientation-$orientation.tif"
    tiffset -s 274 "$orientation" "orientation-$orientation.tif"
done

convert bilevel.pam -alpha off pbm:- | pamtotiff -none -miniswhite > bilevel.tif
for code in g3 g3:2d g3:fill g4 packbits; do
    tiffcp -c $code -r 8 bilevel.tif "bilevel-$(echo $code | tr : -).tif"
done
tiffcp -c g4 -f lsb2msb bilevel.tif bilevel-g4-lsb.tif
tiffcp -c g4 -t -w 32 -l 16 bilevel.tif bilevel-g4-tiles.tif
convert bilevel.pam -alpha off pbm:- | pamtotiff -g4 -minisblack > bilevel-black.tif

convert scene.pam -alpha off -depth 8 ppm:- | cjpeg -quality 95 -sample 1x1 > scene.jpg
djpeg -dct int scene.jpg | convert ppm:- -alpha on -depth 8 scene-jpeg.pam
convert bilevel.pam -alpha off pbm:- | pnmtojbig > bilevel.jbg
python3 make.py odd
rm scene.jpg bilevel.jbg bilevel.tif

# What a profile makes of numbers: by the colour engine of ImageMagick.
convert icc-rgb8.tif -intent Relative -profile ../colour/srgb-v4.icc +profile '*' -depth 8 -alpha on icc-rgb.pam
