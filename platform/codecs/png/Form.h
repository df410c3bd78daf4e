#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/codecs/Bitmap.h"
#include "platform/codecs/png/Chunks.h"
#include "platform/codecs/png/PaletteIndex.h"

namespace veltrane::codecs::png {

/// In which form a picture is written, exactly and with the fewest bits a pixel.
struct Form {
    ColourType colour = ColourType::Rgba;
    int depth = 8;
    PaletteIndex palette;

    [[nodiscard]] std::size_t BitsPerPixel() const noexcept;

    /// Bytes from a sample to its neighbour on the left, as filters count.
    [[nodiscard]] std::size_t Step() const noexcept { return BitsPerPixel() < 8 ? 1 : BitsPerPixel() / 8; }
};

/// Looks at every pixel, or at as many as it takes to know.
[[nodiscard]] Form FormOf(const Bitmap& picture);

/// Packs a row of `width` pixels into the form. Writes up to 8 bytes more than the row has.
void PackRow(const Form& form, const std::uint8_t* rgba, std::uint8_t* row, std::size_t width);

} // namespace veltrane::codecs::png
