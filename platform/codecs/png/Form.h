#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/codecs/Bitmap.h"
#include "platform/codecs/png/Chunks.h"

namespace veltrane::codecs::png {

/// A pixel as the number its four bytes make in memory.
using Pixel = std::uint32_t;

/// Finds a pixel's place in the palette.
class PaletteIndex {
public:
    /// The pixel's index, which it gets now if it is new; Full() tells that no index was left for it.
    [[nodiscard]] std::uint8_t Of(Pixel pixel) noexcept;

    [[nodiscard]] bool Full() const noexcept { return full; }
    [[nodiscard]] std::size_t Size() const noexcept { return count; }

    /// The pixels in the order of their indices.
    [[nodiscard]] const std::array<Pixel, 256>& Pixels() const noexcept { return pixels; }

    /// Reorders the indices so that pixels which are not opaque come first: tRNS tells only those.
    void PutTransparentFirst() noexcept;

private:
    static constexpr std::size_t kSlots = 1024;
    [[nodiscard]] std::size_t SlotOf(Pixel pixel) const noexcept;

    std::array<Pixel, 256> pixels {};
    std::array<std::uint16_t, kSlots> slots {}; ///< index + 1; 0: free
    std::size_t count = 0;
    bool full = false;
};

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
void PackRow(Form& form, const std::uint8_t* rgba, std::uint8_t* row, std::size_t width);

} // namespace veltrane::codecs::png
