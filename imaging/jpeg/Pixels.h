#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/pixels/Bitmap.h"

namespace veltrane::imaging::jpeg {

/// What a JPEG needs to know of a picture's pixels.
struct Content {
    bool opaque = false; ///< every alpha is 255
    bool grey = false; ///< red, green and blue are equal everywhere
};

[[nodiscard]] Content Examine(const Bitmap& picture);

/// Composites `pixels` pixels on white; alpha becomes 255. Straight alpha over the encoded values, as
/// browsers and image editors do.
void LayOnWhite(const std::uint8_t* rgba, std::uint8_t* opaque, std::size_t pixels);

} // namespace veltrane::imaging::jpeg
