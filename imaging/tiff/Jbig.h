#pragma once

#include <cstdint>

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging {

/// Whether a JBIG strip says of itself that it is one plane of one resolution, `width` wide and `rows` to
/// `mostRows` high. The JBIG library believes the strip, not the page, and ends the program when the memory
/// for it is not to be had. `reversed`: the strip's bits run from the low end up.
/// Source: ITU-T T.82, 6.2.2.
[[nodiscard]] bool FitsJbig(
    Bytes strip, bool reversed, std::uint64_t width, std::uint64_t rows, std::uint64_t mostRows);

} // namespace veltrane::imaging
