#include "platform/codecs/png/Grain.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/codecs/png/CommonLength.h"
#include "platform/codecs/png/LiteralCounter.h"

namespace veltrane::codecs::png {

namespace {

constexpr unsigned kShortest = 6; // two pixels: one alone comes again too often for its place to be cheap
constexpr unsigned kUnused = 64 - 8 * kShortest; // bits of a word behind them
constexpr std::size_t kPixelsAtOnce = 64;

// The first kShortest bytes in the upper bits, the same on every processor.
std::uint64_t Load(const std::uint8_t* from) noexcept
{
    std::uint64_t word = 0;
    std::memcpy(&word, from, sizeof word);
    if constexpr (std::endian::native == std::endian::big)
        word = __builtin_bswap64(word);
    return word << kUnused;
}

using LeastLengths = std::array<unsigned, 17>; // worth a match, by the width of its distance

// A literal's bits by the bytes' own statistics, one in four; a match takes about eight bits beside those
// that tell its distance.
LeastLengths WorthTaking(Bytes bytes)
{
    constexpr double kMatchBits = 8;
    std::array<std::uint32_t, 256> counts {};
    for (std::size_t i = 0; i < bytes.size(); i += 4)
        ++counts[bytes[i]];
    const double all = std::max(1.0, std::ceil(static_cast<double>(bytes.size()) / 4));
    double bits = 0.1; // of a literal; never none
    for (const std::uint32_t count : counts)
        bits += count == 0 ? 0 : count / all * std::log2(all / count);
    LeastLengths least {};
    for (std::size_t width = 1; width < least.size(); ++width)
        least[width] = std::max(
            kShortest, static_cast<unsigned>((kMatchBits + static_cast<double>(width) - 1) / bits) + 1);
    return least;
}

// Where the pixels of a stretch were seen last.
struct Candidates {
    std::uint64_t found = 0; // a bit for each pixel, the first lowest
    std::array<std::uint16_t, kPixelsAtOnce> distances; // less 1; of those not found, anything
};

// `here` lies at `position` of the stream, behind at least `reach` bytes. Works without a branch on what is
// found, since that cannot be predicted; heads keep only the low bits of a position, since what is taken for
// a candidate is compared anyway.
template<std::size_t step>
[[gnu::noinline]] void LookUp(const std::uint8_t* here, std::uint32_t position, std::size_t reach,
    std::size_t pixels, GrainFinder::Heads& heads, Candidates& near)
{
    static_assert(kWindow <= std::numeric_limits<std::uint16_t>::max());
    constexpr std::uint64_t kSpread = 0x9E37'79B9'7F4A'7C15;
    std::uint64_t found = 0;
    for (std::size_t i = 0; i < pixels; ++i, here += step, position += step) {
        const std::uint64_t bytes = Load(here);
        std::uint16_t& head = heads[bytes * kSpread >> (64 - GrainFinder::kHashBits)];
        const auto before = static_cast<std::uint16_t>(position - head - 1);
        head = static_cast<std::uint16_t>(position);
        const auto beyond = static_cast<std::uint64_t>(before >= reach);
        const std::size_t distance
            = (before + std::size_t { 1 }) & (beyond - 1); // 0, which is safe, beyond it
        near.distances[i] = before;
        found
            = found >> 1 | static_cast<std::uint64_t>(((Load(here - distance) ^ bytes) | beyond) == 0) << 63;
    }
    near.found = found >> (kPixelsAtOnce - pixels);
}

// A block in the making.
class Cutter {
public:
    Cutter(const std::uint8_t* data, std::size_t from, std::size_t to, Block& block)
        : data(data), literalsFrom(from), to(to), least(WorthTaking({ data + from, to - from })), block(block)
    {
        block.Clear();
    }

    // Takes what is worth it of a stretch of pixels, the first of them at `at`.
    template<std::size_t step>
    void Take(const Candidates& near, std::size_t at)
    {
        for (std::uint64_t found = near.found; found != 0; found &= found - 1) {
            const auto pixel = static_cast<std::size_t>(std::countr_zero(found));
            if (at + pixel * step >= literalsFrom)
                TakeOne(at + pixel * step, near.distances[pixel] + 1U);
        }
    }

    void End()
    {
        literals.Count(data + literalsFrom, to - literalsFrom);
        literals.AddTo(block);
        block.AddEnd(static_cast<std::uint32_t>(to - literalsFrom));
    }

private:
    void TakeOne(std::size_t at, unsigned distance)
    {
        const auto most = static_cast<unsigned>(std::min(to - at, kLongestMatch));
        const unsigned length = CommonLength(data + at, data + at - distance, kShortest, most);
        if (length < least[static_cast<std::size_t>(std::bit_width(distance))])
            return;
        literals.Count(data + literalsFrom, at - literalsFrom);
        block.AddMatch(static_cast<std::uint32_t>(at - literalsFrom), length, distance);
        literalsFrom = at + length;
    }

    const std::uint8_t* data;
    std::size_t literalsFrom, to;
    LeastLengths least;
    Block& block;
    LiteralCounter literals;
};

// Goes from pixel to pixel: what repeats in another phase is not worth a look.
template<std::size_t step>
void CutRows(const std::uint8_t* data, std::uint32_t origin, std::size_t from, std::size_t to,
    std::size_t stride, GrainFinder::Heads& heads, Block& block)
{
    constexpr std::size_t kLoaded = sizeof(std::uint64_t);
    const std::size_t rowPixels = (stride - 1) / step;
    Cutter cutter(data, from, to, block);
    Candidates near;
    for (std::size_t row = from + 1; row < to; row += stride) {
        const std::size_t readable = to - row < kLoaded ? 0 : (to - row - kLoaded) / step + 1;
        const std::size_t rowEnd = row + std::min(rowPixels, readable) * step;
        for (std::size_t at = row; at < rowEnd; at += kPixelsAtOnce * step) {
            const std::size_t pixels = std::min(kPixelsAtOnce, (rowEnd - at) / step);
            LookUp<step>(data + at, origin + static_cast<std::uint32_t>(at), std::min(at, kWindow), pixels,
                heads, near);
            cutter.Take<step>(near, at);
        }
    }
    cutter.End();
}

} // namespace

GrainFinder::GrainFinder() : heads(std::size_t { 1 } << kHashBits) { }

void GrainFinder::Cut(const std::uint8_t* data, std::uint32_t origin, std::size_t from, std::size_t to,
    const Layout& layout, Block& block)
{
    switch (layout.step) {
    case 1: return CutRows<1>(data, origin, from, to, layout.stride, heads, block);
    case 2: return CutRows<2>(data, origin, from, to, layout.stride, heads, block);
    case 3: return CutRows<3>(data, origin, from, to, layout.stride, heads, block);
    default: return CutRows<4>(data, origin, from, to, layout.stride, heads, block);
    }
}

} // namespace veltrane::codecs::png
