#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging::pict {

/// Unpacks one row and gives the number of bytes made. Units of `unit` bytes (1, or 2 for the word runs of
/// 16-bit pixels) are repeated or copied; what no longer fits into `out` is passed over. Ends with either
/// side's end. Source: Apple Technical Note TN1023, "Understanding PackBits".
std::size_t UnpackBits(Bytes packed, std::size_t unit, std::span<std::uint8_t> out) noexcept;

} // namespace veltrane::imaging::pict
