#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "imaging/pixels/Bitmap.h"
#include "imaging/png/Chunks.h"
#include "imaging/png/PaletteIndex.h"

namespace veltrane::imaging::png {

/// In which form a picture is written, exactly and with the fewest bits a pixel.
struct Form {
    ColourType colour = ColourType::Rgba;
    int depth = 8;
    PaletteIndex palette;
    /// The sample of each index that occurs, of a picture that is kept as indices and written with one byte a
    /// pixel or less, other than a grey of 8 bits.
    std::optional<std::array<std::uint8_t, 256>> samples;

    [[nodiscard]] std::size_t BitsPerPixel() const noexcept;

    /// Bytes from a sample to its neighbour on the left, as filters count.
    [[nodiscard]] std::size_t Step() const noexcept { return BitsPerPixel() < 8 ? 1 : BitsPerPixel() / 8; }
};

/// Looks at every pixel, or at as many as it takes to know.
[[nodiscard]] Form FormOf(const Bitmap& picture);

} // namespace veltrane::imaging::png
