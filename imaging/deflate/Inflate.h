#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging {

/// How the inflation of pixel data ended.
enum class Inflated {
    Whole, ///< every byte that was asked for, and the checksum held
    TooLittle, ///< the stream ends properly with fewer bytes
    Broken, ///< cut off, nonsense, or a wrong checksum
};

/// Fills `rows` from a zlib stream. A stream that holds more than that is not inflated further; then its
/// checksum, which covers the rest too, is not asked.
[[nodiscard]] Inflated InflateRows(Bytes stream, std::span<std::uint8_t> rows);

/// Inflates a small zlib stream of unknown size; empty when it is broken or holds more than `most` bytes.
[[nodiscard]] std::vector<std::uint8_t> InflateSmall(Bytes stream, std::size_t most);

} // namespace veltrane::imaging
