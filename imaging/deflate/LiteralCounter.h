#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "imaging/bits/Bytes.h"
#include "imaging/deflate/Block.h"

namespace veltrane::imaging {

/// Counts residues. Counting every byte takes as long as writing it; one in four stands for all, which makes
/// the code no worse by a thousandth. But a rare byte must not be missed, since then it would have no code,
/// nor may every byte get one for that, since rare codes take room from the others: so residues far from 0,
/// where the rare ones are, are all counted. And so are zeros, some of which are no literals: going by the
/// literals alone would stop at each run.
class LiteralCounter {
public:
    /// All bytes of a block.
    [[gnu::always_inline]] void Count(Bytes bytes) noexcept
    {
        const std::uint8_t* at = bytes.data();
        std::size_t left = bytes.size();
        while (left >= sizeof(Lanes)) {
            const std::size_t some = std::min<std::size_t>(left / sizeof(Lanes), 255);
            CountLanes(at, some);
            at += some * sizeof(Lanes);
            left -= some * sizeof(Lanes);
        }
        for (; left > 0; --left, ++at)
            ++exact[*at];
    }

    /// Adds the counts to a block's, but for so many zeros.
    void AddTo(Block& block, std::size_t zerosInRuns) const noexcept
    {
        for (std::size_t i = 1; i < 256; ++i) {
            block.literals[i] += exact[i];
            if (static_cast<std::uint8_t>(i + kNear) > 2 * kNear)
                block.literals[i] += far[0][i] + far[1][i];
            else if (sampled)
                block.literals[i] += 4 * (some[0][i] + some[1][i] + some[2][i] + some[3][i]) + 1;
        }
        block.literals[0] += static_cast<std::uint32_t>(exact[0] + zeros - zerosInRuns);
    }

private:
    using Lanes = std::uint8_t __attribute__((vector_size(32)));
    using Quarters = std::uint64_t __attribute__((vector_size(32)));
    static constexpr std::uint8_t kNear = 32;
    // Two and four tables, so that equal neighbours do not wait for each other's count.
    using Table = std::array<std::uint32_t, 256>;

    // 255 at most, since each lane has a byte for its zeros.
    [[gnu::always_inline]] void CountLanes(const std::uint8_t* bytes, std::size_t count) noexcept
    {
        sampled = true;
        Lanes zerosOfLanes {};
        for (; count > 0; --count, bytes += sizeof(Lanes)) {
            for (std::size_t i = 0; i < sizeof(Lanes) / 4; ++i)
                ++some[i % 4][bytes[i]];
            Lanes lanes;
            std::memcpy(&lanes, bytes, sizeof lanes);
            zerosOfLanes -= reinterpret_cast<Lanes>(lanes == 0);
            const auto beyond = reinterpret_cast<Quarters>(lanes + kNear > 2 * kNear);
            if ((beyond[0] | beyond[1] | beyond[2] | beyond[3]) != 0)
                CountFar(bytes);
        }
        for (std::size_t i = 0; i < sizeof(Lanes); ++i)
            zeros += zerosOfLanes[i];
    }

    [[gnu::always_inline]] void CountFar(const std::uint8_t* bytes) noexcept
    {
        for (std::size_t i = 0; i < sizeof(Lanes); ++i)
            ++far[i % 2][bytes[i]];
    }

    bool sampled = false;
    std::size_t zeros = 0;
    std::array<Table, 4> some {};
    std::array<Table, 2> far {};
    Table exact {};
};

} // namespace veltrane::imaging
