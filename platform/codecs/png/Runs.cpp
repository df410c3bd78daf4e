#include "platform/codecs/png/Runs.h"

#include <algorithm>
#include <cstring>

namespace veltrane::codecs::png {

namespace {

constexpr std::size_t kWord = 4;
constexpr std::size_t kShortest = 10; // shorter runs cost as much as their literals, which are the cheapest

bool IsZeroWord(const std::uint8_t* bytes) noexcept
{
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word == 0;
}

using Lanes = std::uint8_t __attribute__((vector_size(32)));
using Quarters = std::uint64_t __attribute__((vector_size(32)));

// Counts literals. Counting every byte takes as long as writing it; of long stretches one in four stands
// for all, which makes the code no worse by a thousandth. But a rare byte must not be missed, since then it
// would have no code, nor may every byte get one for that, since rare codes take room from the others: so
// residues far from 0, where the rare ones are, are all counted.
class Counter {
public:
    [[gnu::always_inline]] void Count(const std::uint8_t* bytes, std::size_t count) noexcept
    {
        if (count >= kLong) {
            sampled = true;
            for (; count >= sizeof(Lanes); count -= sizeof(Lanes), bytes += sizeof(Lanes))
                CountSome(bytes);
        }
        for (std::size_t i = 0; i < count; ++i)
            ++exact[bytes[i]];
    }
    void AddTo(Block& block) const noexcept
    {
        for (std::size_t i = 0; i < 256; ++i) {
            std::uint32_t count = exact[i];
            if (static_cast<std::uint8_t>(i + kNear) > 2 * kNear)
                count += far[0][i] + far[1][i];
            else if (sampled)
                count += 4 * (some[0][i] + some[1][i] + some[2][i] + some[3][i]) + 1;
            block.literals[i] += count;
        }
    }

private:
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
    Table exact {};
    std::array<Table, 4> some {};
    std::array<Table, 2> far {};
};

// Adds the zeros from `start` to `end` as matches at distance 1, which repeat the byte before them; the
// first zero stays a literal. Where the literals of the next sequence begin.
std::size_t AddRun(Block& block, std::size_t from, std::size_t start, std::size_t end)
{
    ++start;
    auto literals = static_cast<std::uint32_t>(start - from);
    while (end - start >= 3) {
        const std::size_t length = std::min(end - start, kLongestMatch);
        block.AddMatch(literals, static_cast<unsigned>(length), 1);
        start += length;
        literals = 0;
    }
    return start;
}

[[gnu::always_inline]] inline void Find(Bytes bytes, Block& block)
{
    block.Clear();
    Counter counter;
    const std::uint8_t* const data = bytes.data();
    std::size_t from = 0; // where the literals not yet in a sequence begin
    for (std::size_t i = 0; i + kWord <= bytes.size();) {
        if (!IsZeroWord(data + i)) {
            i += kWord;
            continue;
        }
        std::size_t start = i, end = i + kWord;
        while (start > from && data[start - 1] == 0)
            --start;
        while (end < bytes.size() && data[end] == 0)
            ++end;
        i = end;
        if (end - start < kShortest)
            continue;
        counter.Count(data + from, start + 1 - from);
        from = AddRun(block, from, start, end);
    }
    counter.Count(data + from, bytes.size() - from);
    block.AddEnd(static_cast<std::uint32_t>(bytes.size() - from));
    counter.AddTo(block);
}

#ifdef __x86_64__
[[gnu::target("avx2")]] void FindAvx2(Bytes bytes, Block& block)
{
    Find(bytes, block);
}
#endif

} // namespace

void FindRuns(Bytes bytes, Block& block)
{
#ifdef __x86_64__
    static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
    if (hasAvx2)
        return FindAvx2(bytes, block);
#endif
    Find(bytes, block);
}

} // namespace veltrane::codecs::png
