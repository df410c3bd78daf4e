#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "imaging/pixels/Bitmap.h"

namespace veltrane::imaging {

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
/// Raises Fault::NoMemory when the turned copy does not fit.
[[nodiscard]] Bitmap Upright(Bitmap stored, Orientation orientation);

/// Builds the upright picture from stored rows as they are decoded, so that the stored picture never exists
/// as a whole.
class UprightRows {
public:
    static constexpr int kAtOnce = 16;

    /// For a stored picture of this size. Raises Fault::NoMemory when its pixels do not fit.
    UprightRows(int storedWidth, int storedHeight, Orientation orientation);

    /// Bytes held beside the picture.
    [[nodiscard]] static std::int64_t WorkingBytes(int storedWidth, Orientation orientation) noexcept;

    /// Where to write the next stored rows, RGBA without padding: room for kAtOnce, or for all that are left
    /// when they are fewer.
    [[nodiscard]] std::uint8_t* Next() noexcept;

    /// Takes the `count` rows that were written there, at most kAtOnce.
    void Written(int count) noexcept;

    /// The picture, once all rows are written; not opaque.
    [[nodiscard]] Bitmap Take() noexcept { return std::move(picture); }

private:
    Orientation orientation;
    int storedWidth, storedHeight;
    int done = 0; // stored rows that lie in the picture
    int held = 0; // behind them, stored rows that lie in the strip
    Bitmap picture;
    std::uint8_t* pixels; // of `picture`
    std::vector<std::uint8_t> strip; // empty when rows go straight into the picture
};

} // namespace veltrane::imaging
