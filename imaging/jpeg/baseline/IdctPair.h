#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "imaging/jpeg/baseline/Frame.h"

namespace veltrane::imaging::jpeg::baseline {

/// The factors that a component's coefficients are multiplied with to dequantise them. Source: T.81, A.3.4.
struct QuantisationTable {
    explicit QuantisationTable(const std::array<std::uint16_t, kBlockSize>& table);

    alignas(32) std::array<std::uint16_t, kBlockSize> factors; ///< row by row
    /// The largest magnitude of a coefficient with which nothing overflows. Samples of 8 bits need an eighth
    /// of it.
    alignas(32) std::array<std::int16_t, kBlockSize> limits;
};

/// Dequantises two blocks of a component and applies the inverse DCT (T.81, A.3) to both at once: a 256-bit
/// word holds a row of each.
class IdctPair {
public:
    /// The coefficients of the next block, row by row, all 0. After them is padding for one unused
    /// coefficient.
    [[nodiscard]] std::int16_t* Next() noexcept { return blocks[count].data(); }

    /// Adds the block that was written there; its coefficients from index `used` on, in zigzag order, are 0.
    /// Its samples go to `target`.
    void Add(std::uint8_t* target, unsigned used) noexcept
    {
        targets[count++] = target;
        mostCoefficients = std::max(mostCoefficients, used);
    }

    [[nodiscard]] bool Full() const noexcept { return count == 2; }
    [[nodiscard]] bool Empty() const noexcept { return count == 0; }

    /// Writes the samples of the one or two blocks, rows `stride` bytes apart, and empties the pair. Returns
    /// false, with anything written, when a coefficient is beyond its limit. Needs AVX2.
    [[nodiscard]] bool Transform(const QuantisationTable& quantisation, std::size_t stride) noexcept;

private:
    static constexpr std::size_t kRoom = kBlockSize + 16; // keeps the second block aligned

    alignas(32) std::array<std::array<std::int16_t, kRoom>, 2> blocks {};
    std::array<std::uint8_t*, 2> targets {};
    unsigned mostCoefficients = 0;
    std::size_t count = 0;
};

} // namespace veltrane::imaging::jpeg::baseline
