#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/codecs/png/Block.h"

namespace veltrane::codecs::png {

/// Counts the literals among residues. Counting every byte takes as long as writing it; of long stretches one
/// in four stands for all, which makes the code no worse by a thousandth. But a rare byte must not be missed,
/// since then it would have no code, nor may every byte get one for that, since rare codes take room from the
/// others: so residues far from 0, where the rare ones are, are all counted.
class LiteralCounter {
public:
    /// Literals that follow each other.
    [[gnu::always_inline]] void Count(const std::uint8_t* bytes, std::size_t count) noexcept
    {
        if (count >= kLong) {
            sampled = true;
            for (; count >= sizeof(Lanes); count -= sizeof(Lanes), bytes += sizeof(Lanes))
                CountSome(bytes);
        }
        for (; count >= 4; count -= 4, bytes += 4) {
            ++exact[0][bytes[0]];
            ++exact[1][bytes[1]];
            ++exact[0][bytes[2]];
            ++exact[1][bytes[3]];
        }
        for (; count > 0; --count, ++bytes)
            ++exact[0][*bytes];
    }

    /// Adds the counts to a block's.
    void AddTo(Block& block) const noexcept
    {
        for (std::size_t i = 0; i < 256; ++i) {
            std::uint32_t count = exact[0][i] + exact[1][i];
            if (static_cast<std::uint8_t>(i + kNear) > 2 * kNear)
                count += far[0][i] + far[1][i];
            else if (sampled)
                count += 4 * (some[0][i] + some[1][i] + some[2][i] + some[3][i]) + 1;
            block.literals[i] += count;
        }
    }

private:
    using Lanes = std::uint8_t __attribute__((vector_size(32)));
    using Quarters = std::uint64_t __attribute__((vector_size(32)));
    static constexpr std::size_t kLong = 256;
    static constexpr std::uint8_t kNear = 32;
    // Two and four tables, so that equal neighbours do not wait for each other's count.
    using Table = std::array<std::uint32_t, 256>;

    [[gnu::always_inline]] void CountSome(const std::uint8_t* bytes) noexcept
    {
        for (std::size_t i = 0; i < sizeof(Lanes) / 4; ++i)
            ++some[i % 4][bytes[i]];
        Lanes lanes;
        std::memcpy(&lanes, bytes, sizeof lanes);
        const auto beyond = reinterpret_cast<Quarters>(lanes + kNear > 2 * kNear);
        if ((beyond[0] | beyond[1] | beyond[2] | beyond[3]) == 0)
            return;
        for (std::size_t i = 0; i < sizeof(Lanes); ++i)
            ++far[i % 2][bytes[i]];
    }

    bool sampled = false;
    std::array<Table, 4> some {};
    std::array<Table, 2> exact {}, far {};
};

} // namespace veltrane::codecs::png
