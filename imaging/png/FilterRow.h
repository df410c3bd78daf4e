#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/png/Unfilter.h"

namespace veltrane::imaging::png {

/// Bytes of zeros that a row needs in front, and readable bytes behind it.
constexpr std::size_t kRowMargin = 32;

/// The filter whose residues are smallest, which is the one that compresses best on photographs.
/// `row` and `above` are packed rows of `bytes` bytes with kRowMargin around them; a pixel takes `step`
/// bytes, at most 4.
[[nodiscard]] Filter BestFilter(
    const std::uint8_t* row, const std::uint8_t* above, std::size_t bytes, std::size_t step);

/// Writes the row's residues under `filter`, kRowMargin bytes more than the row has at most.
void FilterRow(Filter filter, const std::uint8_t* row, const std::uint8_t* above, std::uint8_t* residues,
    std::size_t bytes, std::size_t step);

} // namespace veltrane::imaging::png
