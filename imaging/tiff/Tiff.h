#pragma once

#include "imaging/Codec.h"

namespace veltrane::imaging {

/// TIFF and BigTIFF: the first full-size page; reduced copies and masks only where there is no such page.
/// Strips and tiles, samples of 1 to 64 bits and floats, grey, palette, RGB, inks, YCbCr and Lab, in every
/// compression that the library offers; orientation, alpha and ICC profile applied.
/// Refused: samples of different sizes, complex numbers, inks other than cyan, magenta, yellow and black,
/// raw data of a sensor, and pages of which one strip or tile cannot be decoded whole.
/// Source: TIFF 6.0 (Adobe, 1992), its technical notes, and the BigTIFF design.
extern const Codec kTiff;

} // namespace veltrane::imaging
