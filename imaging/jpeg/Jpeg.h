#pragma once

#include "imaging/Codec.h"

namespace veltrane::imaging {

/// JPEG: ITU-T T.81, with JFIF (T.871), Exif 2.32, Adobe's marker (Technical Note 5116) and ICC profiles.
/// Reads: baseline, extended and progressive, Huffman and arithmetic, 8 bits; grey, YCbCr, RGB, CMYK, YCCK.
/// Refuses: 12 bits, lossless and hierarchical, which the library does not read; any loss of pixel data.
/// Writes: baseline; 4:2:0 below quality 90, 4:4:4 from there; grey where exact; alpha on white.
extern const Codec kJpeg;

} // namespace veltrane::imaging
