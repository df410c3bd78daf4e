#include "imaging/deflate/Grain.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>

#include "imaging/deflate/CommonLength.h"

namespace veltrane::imaging {

namespace {

constexpr unsigned kShortest = 6; // two pixels: one alone comes again too often for its place to be cheap
constexpr unsigned kUnused = 64 - 8 * kShortest; // bits of a word behind them
constexpr std::size_t kPixelsAtOnce = 64;

// The first byte lowest, the same on every processor.
std::uint64_t Load(const std::uint8_t* from) noexcept
{
    std::uint64_t word = 0;
    std::memcpy(&word, from, sizeof word);
    if constexpr (std::endian::native == std::endian::big)
        word = __builtin_bswap64(word);
    return word;
}

using LeastLengths = std::array<unsigned, 17>; // worth a match, by the width of its distance

// A literal's bits by the bytes' own statistics, of a few bytes in all places of a pixel; a match takes about
// eight bits beside those that tell its distance.
LeastLengths WorthTaking(Bytes bytes)
{
    constexpr double kMatchBits = 8;
    constexpr std::size_t kSampleStep = 17;
    std::array<std::uint32_t, 256> counts {};
    for (std::size_t i = 0; i < bytes.size(); i += kSampleStep)
        ++counts[bytes[i]];
    const double all = std::max(1.0, std::ceil(static_cast<double>(bytes.size()) / kSampleStep));
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
    std::array<std::uint16_t, kPixelsAtOnce> differences; // of the bytes behind those that are equal
};

// `here` lies at `position` of the stream, behind at least `reach` bytes, a power of two. Works without a
// branch on what is found, since that cannot be predicted. What a head tells is brought into reach and then
// compared anyway: so heads may hold what they like, and the low bits of a position are enough.
template<std::size_t step>
[[gnu::noinline]] void LookUp(const std::uint8_t* here, std::uint32_t position, std::size_t reach,
    std::size_t pixels, GrainFinder::Heads& heads, Candidates& near)
{
    static_assert(kWindow <= std::numeric_limits<std::uint16_t>::max());
    constexpr std::uint64_t kSpread = 0x9E37'79B9'7F4A'7C15;
    const std::size_t within = reach - 1;
    std::uint64_t found = 0;
    for (std::size_t i = 0; i < pixels; ++i, here += step, position += step) {
        const std::uint64_t bytes = Load(here);
        std::uint16_t& head = heads[(bytes << kUnused) * kSpread >> (64 - GrainFinder::kHashBits)];
        const std::size_t before = (position - head - 1) & within;
        head = static_cast<std::uint16_t>(position);
        near.distances[i] = static_cast<std::uint16_t>(before);
        const std::uint64_t differences = Load(here - before - 1) ^ bytes;
        near.differences[i] = static_cast<std::uint16_t>(differences >> 8 * kShortest);
        found = found >> 1 | static_cast<std::uint64_t>(differences << kUnused == 0) << 63;
    }
    near.found = found >> (kPixelsAtOnce - pixels);
}

// How many pixels `bytes` bytes reach into.
template<std::size_t step>
constexpr std::size_t PixelsOf(std::size_t bytes) noexcept
{
    return (bytes + step - 1) / step;
}

// A bit for each pixel from `first` on.
constexpr std::uint64_t From(std::size_t first) noexcept
{
    return first < kPixelsAtOnce ? ~std::uint64_t { 0 } << first : 0;
}

// A block in the making.
template<std::size_t step>
class Cutter {
public:
    Cutter(const std::uint8_t* data, std::size_t from, std::size_t to, Block& block)
        : data(data), literalsFrom(from), to(to), least(WorthTaking({ data + from, to - from })), block(block)
    {
        block.Clear();
        for (std::size_t width = 1; width < least.size() && least[width] == kShortest; ++width)
            shortestWithin = (std::size_t { 1 } << width) - 1;
    }

    // Takes what is worth it of a stretch of pixels, the first of them at `at`, and counts the other pixels.
    void Take(const Candidates& near, std::size_t at, std::size_t pixels)
    {
        const std::size_t covered = std::max(literalsFrom, at) - at;
        std::uint64_t found = near.found & From(PixelsOf<step>(covered)), open = From(covered / step);
        std::array<Sequence, kPixelsAtOnce> taken;
        std::size_t count = 0;
        while (found != 0) {
            const auto pixel = static_cast<std::size_t>(std::countr_zero(found));
            const std::size_t start = at + pixel * step;
            const unsigned length = LengthOf(near, pixel, start);
            if (length == 0) {
                found &= found - 1;
                continue;
            }
            taken[count++] = { static_cast<std::uint32_t>(start - literalsFrom),
                static_cast<std::uint16_t>(length), near.distances[pixel] };
            literalsFrom = start + length;
            if (length == kShortest) [[likely]] {
                found &= ~(~From(PixelsOf<step>(kShortest)) << pixel);
                open &= ~(~From(kShortest / step) << pixel);
            } else {
                found &= From(pixel + PixelsOf<step>(length));
                open &= ~From(pixel) | From(pixel + length / step);
            }
        }
        block.AddMatches(std::span(taken).first(count));
        CountPixels(open & ~From(pixels), at);
    }

    // Counts those of `count` bytes at `at` that no match covers.
    void CountBytes(std::size_t at, std::size_t count)
    {
        for (std::size_t i = std::max(at, literalsFrom); i < at + count; ++i)
            ++counts[0][data[i]];
    }

    void End()
    {
        for (std::size_t i = 0; i < 256; ++i)
            block.literals[i] += counts[0][i] + counts[1][i];
        block.AddEnd(static_cast<std::uint32_t>(to - literalsFrom));
    }

private:
    // Of the match that was found at `start`; 0 if it is not worth it. Most are as short as can be, which
    // tells without another look at their bytes.
    [[nodiscard, gnu::always_inline]] unsigned LengthOf(
        const Candidates& near, std::size_t pixel, std::size_t start) const
    {
        if ((near.differences[pixel] & 0xFF) != 0) [[likely]]
            return near.distances[pixel] < shortestWithin ? kShortest : 0;
        const unsigned distance = near.distances[pixel] + 1U;
        const auto most = static_cast<unsigned>(std::min(to - start, kLongestMatch));
        const unsigned length = CommonLength(data + start, data + start - distance, kShortest, most);
        return length < least[static_cast<std::size_t>(std::bit_width(distance))] ? 0 : length;
    }

    // Counts pixels that have a literal at least.
    void CountPixels(std::uint64_t open, std::size_t at)
    {
        for (; open != 0; open &= open - 1) {
            const std::uint8_t* const pixel
                = data + at + static_cast<std::size_t>(std::countr_zero(open)) * step;
            for (std::size_t i = 0; i < step; ++i)
                ++counts[i % 2][pixel[i]];
        }
    }

    const std::uint8_t* data;
    std::size_t literalsFrom, to;
    LeastLengths least;
    std::size_t shortestWithin = 0; // how far back a match of kShortest is worth it
    Block& block;
    std::array<std::array<std::uint32_t, 256>, 2> counts {};
};

// Goes from pixel to pixel: what repeats in another phase is not worth a look.
template<std::size_t step>
void CutRows(const std::uint8_t* data, std::uint32_t origin, std::size_t from, std::size_t to,
    std::size_t stride, GrainFinder::Heads& heads, Block& block)
{
    constexpr std::size_t kLoaded = sizeof(std::uint64_t);
    const std::size_t rowPixels = (stride - 1) / step;
    Cutter<step> cutter(data, from, to, block);
    Candidates near;
    for (std::size_t row = from + 1; row < to; row += stride) {
        const std::size_t readable = to - row < kLoaded ? 0 : (to - row - kLoaded) / step + 1;
        const std::size_t rowEnd = row + std::min(rowPixels, readable) * step;
        cutter.CountBytes(row - 1, 1);
        for (std::size_t at = row; at < rowEnd; at += kPixelsAtOnce * step) {
            const std::size_t pixels = std::min(kPixelsAtOnce, (rowEnd - at) / step);
            LookUp<step>(data + at, origin + static_cast<std::uint32_t>(at),
                std::bit_floor(std::min(at, kWindow)), pixels, heads, near);
            cutter.Take(near, at, pixels);
        }
        cutter.CountBytes(rowEnd, row + rowPixels * step - rowEnd);
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

} // namespace veltrane::imaging
