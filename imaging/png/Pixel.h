#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace veltrane::imaging::png {

/// A pixel as the number its four bytes make in memory.
using Pixel = std::uint32_t;

[[nodiscard]] inline Pixel LoadPixel(const std::uint8_t* from) noexcept
{
    Pixel pixel = 0;
    std::memcpy(&pixel, from, sizeof pixel);
    return pixel;
}

/// Its four bytes: red, green, blue, alpha.
[[nodiscard]] constexpr std::array<std::uint8_t, 4> Channels(Pixel pixel) noexcept
{
    return std::bit_cast<std::array<std::uint8_t, 4>>(pixel);
}

} // namespace veltrane::imaging::png
