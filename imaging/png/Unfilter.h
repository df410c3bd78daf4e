#pragma once

#include <cstddef>
#include <cstdint>

namespace veltrane::imaging::png {

/// The predictions that a row's first byte names. Source: PNG 3rd ed., 9.2.
enum Filter : std::uint8_t { kNone, kSub, kUp, kAverage, kPaeth, kFilters };

/// The neighbour (left, above, above left) that lies nearest to a + b - c.
[[nodiscard]] constexpr std::uint8_t Paeth(int a, int b, int c) noexcept
{
    const int towardsA = b < c ? c - b : b - c;
    const int towardsB = a < c ? c - a : a - c;
    const int both = a + b - 2 * c;
    const int towardsC = both < 0 ? -both : both;
    if (towardsA <= towardsB && towardsA <= towardsC)
        return static_cast<std::uint8_t>(a);
    return static_cast<std::uint8_t>(towardsB <= towardsC ? b : c);
}

/// Undoes a row's filter in place. `row` and `above`: `bytes` bytes without the filter byte; a pixel takes
/// `step` bytes, 1 where it takes less. `filter` is below kFilters.
void Unfilter(
    Filter filter, std::uint8_t* row, const std::uint8_t* above, std::size_t bytes, std::size_t step);

/// How many rows UnfilterBand undoes at a time.
constexpr int kBandRows = 8;

/// Undoes the filters of kBandRows rows of RGB (`step` 3, alpha becomes 255) or RGBA (`step` 4) and writes
/// them as RGBA. `rows`: the filtered rows, filter bytes included, one behind the other, followed by 4
/// readable bytes. `above`: the RGBA row above the first. `rgba`: the first of the rows to write, `width`
/// pixels each, without padding. The filter bytes are below kFilters.
void UnfilterBand(const std::uint8_t* rows, std::size_t step, const std::uint8_t* above, std::uint8_t* rgba,
    std::size_t width);

} // namespace veltrane::imaging::png
