#pragma once

#include "platform/codecs/Bitmap.h"

namespace veltrane::codecs {

/// How the stored rows stand to the upright picture, numbered as in EXIF and TIFF (tag 0x0112): where row 0
/// and column 0 of the stored pixels lie in the picture. Source: TIFF 6.0, section 8, "Orientation".
enum class Orientation {
    TopLeft = 1, ///< upright as stored
    TopRight = 2,
    BottomRight = 3,
    BottomLeft = 4,
    LeftTop = 5,
    RightTop = 6,
    RightBottom = 7,
    LeftBottom = 8,
};

/// The tag's value as an Orientation; TopLeft for a number outside 1 to 8.
[[nodiscard]] Orientation OrientationFrom(int tag) noexcept;

/// Whether turning upright exchanges width and height.
[[nodiscard]] bool SwapsSides(Orientation orientation) noexcept;

/// The picture turned upright; the same one when it stands so already.
/// Raises OutOfMemoryException when the turned copy does not fit.
[[nodiscard]] Bitmap Upright(Bitmap stored, Orientation orientation);

} // namespace veltrane::codecs
