#pragma once

#include <array>
#include <bit>
#include <cstdint>

#include "imaging/bits/ByteReader.h"

namespace veltrane::imaging::pict {

/// A pixel as it lies in a Bitmap: four bytes R, G, B, A read as one word of the machine. Bitwise
/// operations work on all components at once, whatever the byte order.
using Rgba = std::uint32_t;

[[nodiscard]] constexpr Rgba MakeRgba(std::uint8_t red, std::uint8_t green, std::uint8_t blue) noexcept
{
    return std::bit_cast<Rgba>(std::array<std::uint8_t, 4> { red, green, blue, 255 });
}

[[nodiscard]] constexpr std::array<std::uint8_t, 4> Components(Rgba pixel) noexcept
{
    return std::bit_cast<std::array<std::uint8_t, 4>>(pixel);
}

inline constexpr Rgba kBlack = MakeRgba(0, 0, 0);
inline constexpr Rgba kWhite = MakeRgba(255, 255, 255);

/// A colour of five bits a component in a word. The upper bits fill the three that are missing, so that 31
/// becomes 255.
[[nodiscard]] constexpr Rgba FromFiveBits(std::uint16_t word) noexcept
{
    const auto widened = [word](int shift) {
        const int five = word >> shift & 31;
        return static_cast<std::uint8_t>(five << 3 | five >> 2);
    };
    return MakeRgba(widened(10), widened(5), widened(0));
}

/// An RGBColor: three components of 16 bits, of which a screen of 8 bits shows the upper half.
[[nodiscard]] inline Rgba ReadRgbColor(ByteReader& in)
{
    const std::uint16_t red = in.U16();
    const std::uint16_t green = in.U16();
    const std::uint16_t blue = in.U16();
    return MakeRgba(static_cast<std::uint8_t>(red >> 8), static_cast<std::uint8_t>(green >> 8),
        static_cast<std::uint8_t>(blue >> 8));
}

} // namespace veltrane::imaging::pict
