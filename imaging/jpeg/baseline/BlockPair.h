#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "imaging/jpeg/baseline/Frame.h"

namespace veltrane::imaging::jpeg::baseline {

/// What a plane's coefficients are multiplied with.
struct Quantisers {
    explicit Quantisers(const std::array<std::uint16_t, kBlockSize>& table);

    alignas(32) std::array<std::uint16_t, kBlockSize> factors; ///< row by row
    /// How far from 0 a coefficient may be: up to there nothing overflows. Samples of 8 bits need an eighth
    /// of it.
    alignas(32) std::array<std::int16_t, kBlockSize> limits;
};

/// Two blocks of a plane on their way from coefficients to samples: the processor's words are as long.
class BlockPair {
public:
    /// Coefficients of the next block, row by row, all 0. Behind them is room for a value that nobody wants.
    [[nodiscard]] std::int16_t* Next() noexcept { return blocks[count].data(); }

    /// Takes the block that was written there; all coefficients from number `used` on, in zigzag order, are
    /// 0. Its samples will go to `target`.
    void Add(std::uint8_t* target, unsigned used) noexcept
    {
        targets[count++] = target;
        mostUsed = std::max(mostUsed, used);
    }

    [[nodiscard]] bool Full() const noexcept { return count == 2; }
    [[nodiscard]] bool Empty() const noexcept { return count == 0; }

    /// Writes the samples of the one or two blocks, rows `stride` bytes apart, and empties the pair. False,
    /// with anything written, when a coefficient is beyond its limit. For processors that have AVX2.
    [[nodiscard]] bool Transform(const Quantisers& quantisers, std::size_t stride) noexcept;

private:
    static constexpr std::size_t kRoom = kBlockSize + 16; // the alignment of the second block kept

    alignas(32) std::array<std::array<std::int16_t, kRoom>, 2> blocks {};
    std::array<std::uint8_t*, 2> targets {};
    unsigned mostUsed = 0;
    std::size_t count = 0;
};

} // namespace veltrane::imaging::jpeg::baseline
