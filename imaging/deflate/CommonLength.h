#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace veltrane::imaging {

/// How many bytes are equal, from `known` on, `most` at most.
inline unsigned CommonLength(
    const std::uint8_t* a, const std::uint8_t* b, unsigned known, unsigned most) noexcept
{
    for (; known + 8 <= most; known += 8) {
        std::uint64_t x = 0, y = 0;
        std::memcpy(&x, a + known, sizeof x);
        std::memcpy(&y, b + known, sizeof y);
        if (x != y) {
            const int zeros = std::endian::native == std::endian::little ? std::countr_zero(x ^ y)
                                                                         : std::countl_zero(x ^ y);
            return known + static_cast<unsigned>(zeros) / 8;
        }
    }
    while (known < most && a[known] == b[known])
        ++known;
    return known;
}

} // namespace veltrane::imaging
