#include "imaging/deflate/Runs.h"

#include <algorithm>
#include <bit>
#include <cstring>

#ifdef __x86_64__
#include <immintrin.h>
#endif

#include "imaging/bits/Processor.h"
#include "imaging/deflate/LiteralCounter.h"

namespace veltrane::imaging {

namespace {

constexpr std::size_t kShortest = 10; // shorter runs cost as much as their literals, which are the cheapest
constexpr std::size_t kFew = 4; // bytes for each literal, and a sample of all tells too little of them
constexpr std::size_t kSeen = 64; // bytes that a mask tells of

// A bit for each of the kSeen bytes, the first lowest: whether it is zero.
struct PortableMask {
    std::uint64_t operator()(const std::uint8_t* bytes) const noexcept
    {
        constexpr std::uint64_t kLow = 0x7F7F'7F7F'7F7F'7F7F;
        std::uint64_t mask = 0;
        for (std::size_t i = 0; i < kSeen; i += 8) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes + i, sizeof word);
            if constexpr (std::endian::native == std::endian::big)
                word = __builtin_bswap64(word);
            const std::uint64_t zeros = ~(((word & kLow) + kLow) | word | kLow); // the highest bit of each
            mask |= (((zeros >> 7) * 0x0102'0408'1020'4080) >> 56) << i;
        }
        return mask;
    }
};

#ifdef __x86_64__
struct Avx2Mask {
    [[gnu::target("avx2")]] std::uint64_t operator()(const std::uint8_t* bytes) const noexcept
    {
        const auto half = [bytes](std::size_t at) __attribute__((target("avx2")))
        {
            __m256i lanes;
            std::memcpy(&lanes, bytes + at, sizeof lanes);
            return static_cast<std::uint32_t>(
                _mm256_movemask_epi8(_mm256_cmpeq_epi8(lanes, _mm256_setzero_si256())));
        };
        return half(0) | std::uint64_t { half(32) } << 32;
    }
};
#endif

// The bits that begin kShortest set ones.
std::uint64_t Beginnings(std::uint64_t mask) noexcept
{
    static_assert(kShortest == 10);
    mask &= mask >> 1;
    mask &= mask >> 2;
    mask &= mask >> 4;
    return mask & mask >> 2;
}

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

// Where the zeros from `at` on end.
template<class ZeroMask>
[[gnu::always_inline]] inline std::size_t EndOfZeros(Bytes bytes, std::size_t at, ZeroMask zeroMask)
{
    for (; at + kSeen <= bytes.size(); at += kSeen) {
        const std::uint64_t mask = zeroMask(bytes.data() + at);
        if (~mask != 0)
            return at + static_cast<std::size_t>(std::countr_one(mask));
    }
    while (at < bytes.size() && bytes[at] == 0)
        ++at;
    return at;
}

// Counts the literals between matches, one by one.
void CountEach(Bytes bytes, Block& block)
{
    const std::uint8_t* at = bytes.data();
    for (const Sequence& sequence : block.sequences) {
        for (std::uint32_t i = 0; i < sequence.literals; ++i)
            ++block.literals[at[i]];
        at += sequence.literals + sequence.length;
    }
}

template<class ZeroMask>
[[gnu::always_inline]] inline void Find(Bytes bytes, Block& block, ZeroMask zeroMask)
{
    block.Clear();
    const std::uint8_t* const data = bytes.data();
    std::size_t from = 0, inRuns = 0; // where the literals not yet in a sequence begin; bytes in matches
    for (std::size_t i = 0; i + kSeen <= bytes.size();) {
        const std::uint64_t mask = zeroMask(data + i), beginnings = Beginnings(mask);
        if (beginnings == 0) {
            i += kSeen - kShortest + 1;
            continue;
        }
        const int first = std::countr_zero(beginnings);
        const int length = std::countr_one(mask >> first);
        const std::size_t start = i + static_cast<std::size_t>(first);
        i = start + static_cast<std::size_t>(length);
        if (first + length == static_cast<int>(kSeen))
            i = EndOfZeros(bytes, i, zeroMask);
        from = AddRun(block, from, start, i);
        inRuns += from - start - 1;
    }
    block.AddEnd(static_cast<std::uint32_t>(bytes.size() - from));
    if (bytes.size() - inRuns < bytes.size() / kFew)
        return CountEach(bytes, block);
    LiteralCounter counter;
    counter.Count(bytes);
    counter.AddTo(block, inRuns);
}

#ifdef __x86_64__
[[gnu::target("avx2")]] void FindAvx2(Bytes bytes, Block& block)
{
    Find(bytes, block, Avx2Mask {});
}
#endif

} // namespace

void FindRuns(Bytes bytes, Block& block)
{
#ifdef __x86_64__
    if (HasAvx2())
        return FindAvx2(bytes, block);
#endif
    Find(bytes, block, PortableMask {});
}

} // namespace veltrane::imaging
