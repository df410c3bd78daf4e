#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging {

/// Unpacks strips and tiles whose LZW data is in order, in half the library's time. Source: TIFF 6.0,
/// section 13.
class TiffLzw {
public:
    static constexpr std::size_t kSlack = 16; ///< bytes behind the unpacked ones that may be written

    /// Fills `to`, behind which are kSlack bytes. False, with anything written, when the data ends before or
    /// holds a code that it must not, or is of the old kind, whose first bit is the lowest.
    [[nodiscard]] bool Unpack(Bytes packed, std::span<std::uint8_t> to);

private:
    static constexpr unsigned kMostBits = 12;
    static constexpr std::size_t kCodes = std::size_t { 1 } << kMostBits;

    class Reader;

    // What a code stands for was written before: of a code of one byte, in a table; else, where the string
    // before it and its own first byte met.
    std::array<const std::uint8_t*, kCodes> starts;
    std::array<std::uint16_t, kCodes> lengths;
};

/// Adds to each sample of a row of `bytes` bytes the one before, `step` bytes to the left: what a horizontal
/// predictor took off. Source: TIFF 6.0, section 14.
void AddDifferences(std::uint8_t* row, std::size_t bytes, std::size_t step) noexcept;

} // namespace veltrane::imaging
