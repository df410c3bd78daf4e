#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "imaging/pixels/Bitmap.h"

namespace veltrane::imaging::jpeg {

/// The pixels of a picture as its JPEG shows them: composited on white where they are not opaque.
class OnWhite {
public:
    static constexpr int kAtOnce = 16;

    /// `picture` must outlive this. `opaque`: every alpha is 255. Raises std::bad_alloc.
    OnWhite(const Bitmap& picture, bool opaque);

    /// At most kAtOnce rows from `y` on, RGBA without padding; valid until the next call.
    [[nodiscard]] const std::uint8_t* Rows(int y, int count);

    /// Copies `count` pixels of row `y`, from column `x` on.
    void Copy(int x, int y, int count, std::uint8_t* rgba) const;

private:
    const Bitmap& picture;
    bool opaque;
    std::optional<Palette> laid; ///< of a picture that is kept as indices
    std::vector<std::uint8_t> strip; ///< empty when the picture's own pixels will do
};

} // namespace veltrane::imaging::jpeg
