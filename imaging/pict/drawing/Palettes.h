#pragma once

#include <vector>

#include "imaging/pict/drawing/Rgba.h"

namespace veltrane::imaging::pict {

/// The colours that the Macintosh gives to pixels of `depth` bits without a table of their own, padded
/// with black to 256. Source: the system's 'clut' resources 1, 2, 4 and 8.
[[nodiscard]] std::vector<Rgba> SystemPalette(int depth);

/// White to black in 2^depth equal steps, padded with black to 256.
[[nodiscard]] std::vector<Rgba> GreyPalette(int depth);

} // namespace veltrane::imaging::pict
