#pragma once

#include <array>
#include <cstdint>

#include "imaging/bits/Bytes.h"
#include "imaging/pixels/Orientation.h"
#include "imaging/tiff/File.h"

namespace veltrane::imaging {

/// What the colour samples mean.
enum class TiffColour {
    Grey,
    Rgb,
    Palette,
    Inks, ///< cyan, magenta, yellow, black; 0 is no ink
    CieLab, ///< a and b are signed numbers
    IccLab, ///< a and b around the middle of their range
    ItuLab, ///< a and b in the ranges of colour fax
    Library, ///< left to the library's own reader: old JPEG, YCbCr in blocks, logarithms
};

enum class TiffNumbers { Unsigned, Signed, Float };

/// What the directory of a page tells, checked: a page that can be decoded as far as it is known before
/// its pixels are.
struct TiffPage {
    std::int64_t width = 0; ///< as stored
    std::int64_t height = 0;
    Orientation orientation = Orientation::TopLeft;

    TiffColour colour = TiffColour::Grey;
    bool minIsWhite = false;
    TiffNumbers numbers = TiffNumbers::Unsigned;
    unsigned bits = 1; ///< of a sample
    unsigned samples = 1; ///< of a pixel, as stored
    unsigned colours = 1; ///< of them colour, the first ones
    int alpha = -1; ///< which sample is alpha, -1 none
    bool associated = false; ///< colours are multiplied by alpha
    double floor = 0.0; ///< of floats: black
    double ceiling = 1.0; ///< of floats: white

    bool planar = false; ///< each sample in strips or tiles of its own
    bool tiled = false;
    unsigned compression = 1; ///< the tag's number

    Bytes profile; ///< ICC, empty for none; valid as long as the file is open
    std::array<const std::uint16_t*, 3> palette {}; ///< red, green, blue: 2^bits numbers each; same validity
};

/// Reads the page at which `file` is open. Raises Fault for a page of a kind that is
/// not read; sides are not checked.
[[nodiscard]] TiffPage ReadPage(TiffFile& file);

} // namespace veltrane::imaging
