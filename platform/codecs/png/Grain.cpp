#include "platform/codecs/png/Grain.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "platform/codecs/png/CommonLength.h"

namespace veltrane::codecs::png {

namespace {

constexpr unsigned kShortest = 6; // two pixels: one alone comes again too often for its place to be cheap
constexpr std::uint64_t kMask = (std::uint64_t { 1 } << 8 * kShortest) - 1;

// The low kShortest bytes, the first lowest on every processor.
std::uint64_t Load(const std::uint8_t* from) noexcept
{
    std::uint64_t word = 0;
    std::memcpy(&word, from, sizeof word);
    if constexpr (std::endian::native == std::endian::big)
        word = __builtin_bswap64(word);
    return word & kMask;
}

} // namespace

GrainFinder::GrainFinder() : heads(std::size_t { 1 } << kHashBits) { }

// A literal's bits by the bytes' own statistics, one in four; a match takes about eight bits beside those
// that tell its distance.
GrainFinder::LeastLengths GrainFinder::WorthTaking(Bytes bytes)
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
    for (std::size_t width = 0; width < least.size(); ++width)
        least[width] = std::max(
            kShortest, static_cast<unsigned>((kMatchBits + static_cast<double>(width)) / bits) + 1);
    return least;
}

std::uint32_t& GrainFinder::HeadOf(const std::uint8_t* at) noexcept
{
    return heads[Load(at) * 0x9E37'79B9'7F4A'7C15 >> (64 - kHashBits)];
}

// How many bytes at `here` repeat those at the last place like it; 0 when there is none.
unsigned GrainFinder::Look(const std::uint8_t* here, std::uint32_t position, std::size_t reach,
    std::size_t most, unsigned& distance) noexcept
{
    std::uint32_t& head = HeadOf(here);
    distance = position - head;
    head = position;
    if (distance - 1 >= reach || Load(here) != Load(here - distance))
        return 0;
    return CommonLength(here, here - distance, kShortest, static_cast<unsigned>(most));
}

void GrainFinder::Cut(const std::uint8_t* data, std::uint32_t origin, std::size_t from, std::size_t to,
    std::size_t step, Block& block)
{
    constexpr std::size_t kLoaded = 8;
    const LeastLengths least = WorthTaking({ data + from, to - from });
    block.Clear();
    std::size_t at = from, literalsFrom = from;
    std::array<std::array<std::uint32_t, 256>, 2> counts {}; // equal neighbours do not wait for each other
    const auto countLiterals = [&](std::size_t end) {
        for (std::size_t i = literalsFrom; i < end; ++i)
            ++counts[i % 2][data[i]];
    };
    while (at + kLoaded <= to) {
        const auto position = origin + static_cast<std::uint32_t>(at);
        unsigned distance = 0;
        const unsigned length
            = Look(data + at, position, std::min(at, kWindow), std::min(to - at, kLongestMatch), distance);
        if (length == 0 || length < least[static_cast<std::size_t>(std::bit_width(distance)) - 1]) {
            at += step;
            continue;
        }
        countLiterals(at);
        block.AddMatch(static_cast<std::uint32_t>(at - literalsFrom), length, distance);
        const std::size_t end = at + length;
        for (at += step; at < end && at + kLoaded <= to; at += 2 * step)
            HeadOf(data + at) = origin + static_cast<std::uint32_t>(at);
        at = literalsFrom = end;
    }
    countLiterals(to);
    for (std::size_t i = 0; i < counts[0].size(); ++i)
        block.literals[i] += counts[0][i] + counts[1][i];
    block.AddEnd(static_cast<std::uint32_t>(to - literalsFrom));
}

} // namespace veltrane::codecs::png
