#!/bin/sh
# Makes the pictures beside it: ImageMagick and netpbm encode the ordinary ones, make.py writes the odd ones
# byte by byte. Each NAME.pam holds the pixels that the files tests/imaging/gif/TestGif.cpp pairs with it must give.
# Run by hand; the results are kept, so that the tests need none of these tools.
set -eu
cd "$(dirname "$0")"
rm -f ./*.gif ./*.pam
python3 make.py sources

convert scene.pam -compress LZW -interlace None imagemagick.gif
pamtopnm -assume scene.pam | pamtogif > netpbm.gif
pamtopnm -assume scene.pam | pamtogif -interlace > interlaced.gif
pamtopnm -assume noise.pam | pamtogif > noise.gif
convert holes.pam holes.gif
convert -size 20x12 -page 20x12+3+2 patch.pam -page 20x12+0+0 scene.pam -loop 0 animated.gif
python3 make.py odd
