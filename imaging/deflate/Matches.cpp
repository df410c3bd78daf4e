#include "imaging/deflate/Matches.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "imaging/deflate/CommonLength.h"

namespace veltrane::imaging {

namespace {

constexpr int kHashBits = 15, kThreesBits = 14;
constexpr unsigned kSettled = 64; // a match this long is taken without a look at the next position
constexpr std::size_t kRun = 16; // a match this long that repeats the last pixel is a run

// Whether a longer match begins one byte on is looked for less where the one at hand is good.
constexpr unsigned kGood = 16;
constexpr int kLessWhenGood = 16, kLess = 2;

constexpr unsigned kNearby = 8192; // matches of three bytes from further away cost more than literals
constexpr std::size_t kEnoughSequences = 12'000; // of a block: statistics change along a picture

std::uint32_t Load(const std::uint8_t* from) noexcept
{
    std::uint32_t word = 0;
    std::memcpy(&word, from, sizeof word);
    return word;
}

std::uint32_t HashOfFour(const std::uint8_t* at) noexcept
{
    return (Load(at) * 0x9E37'79B1U) >> (32 - kHashBits);
}

std::uint32_t HashOfThree(const std::uint8_t* at) noexcept
{
    const std::uint32_t three = at[0] | std::uint32_t { at[1] } << 8 | std::uint32_t { at[2] } << 16;
    return (three * 0x9E37'79B1U) >> (32 - kThreesBits);
}

// How a match of at least so many bytes ends, as far as eight bytes tell. Asking for this first passes over
// nearly all places that share no more than their beginning.
class Ending {
public:
    Ending(const std::uint8_t* here, unsigned length) noexcept
        : from(length - std::min(length, kSeen))
        , mask(~std::uint64_t { 0 } >> 8 * (kSeen - std::min(length, kSeen)))
        , bytes(LoadEight(here + from))
    {
    }

    [[nodiscard]] bool IsAt(const std::uint8_t* there) const noexcept
    {
        return ((LoadEight(there + from) ^ bytes) & mask) == 0;
    }

private:
    static constexpr unsigned kSeen = 8;

    // The first byte lowest.
    static std::uint64_t LoadEight(const std::uint8_t* at) noexcept
    {
        std::uint64_t word = 0;
        std::memcpy(&word, at, sizeof word);
        if constexpr (std::endian::native == std::endian::big)
            word = __builtin_bswap64(word);
        return word;
    }

    unsigned from;
    std::uint64_t mask, bytes;
};

} // namespace

MatchFinder::MatchFinder(int depth)
    : depth(depth)
    , heads(std::size_t { 1 } << kHashBits)
    , threes(std::size_t { 1 } << kThreesBits)
    , previous(kWindow)
{
}

// Positions are compared by their distance, so that tables may hold what they like: a candidate counts
// only if it lies in the window, and then its bytes are there to be compared.
MatchFinder::Match MatchFinder::Find(const Stretch& in, std::size_t at, unsigned longerThan, int looks)
{
    Match best { longerThan, 0 };
    const auto most = static_cast<unsigned>(std::min(in.end - at, kLongestMatch));
    if (most < 4 || longerThan >= most)
        return {};
    const std::uint8_t* const here = in.data + at;
    const std::uint32_t position = in.origin + static_cast<std::uint32_t>(at);
    const std::size_t reach = std::min(at, kWindow);
    std::uint32_t candidate = heads[HashOfFour(here)];
    const std::uint32_t near = position - threes[HashOfThree(here)];
    Note(in, at);
    if (longerThan < 3 && near - 1 < std::min<std::size_t>(reach, kNearby)
        && std::memcmp(here, here - near, 3) == 0)
        best = { 3, near };
    Ending ending(here, std::max(best.length + 1, 4U));
    for (std::uint32_t last = 0; looks > 0; --looks) {
        const std::uint32_t distance = position - candidate;
        if (distance <= last || distance > reach)
            break;
        last = distance;
        candidate = previous[candidate % kWindow];
        const std::uint8_t* const there = here - distance;
        if (!ending.IsAt(there))
            continue;
        const unsigned length = CommonLength(here, there, 0, most);
        if (length <= std::max(best.length, 3U))
            continue;
        best = { length, distance };
        if (length == most)
            break;
        ending = Ending(here, length + 1);
    }
    return best.distance != 0 ? best : Match {};
}

// What a match saves, as far as it can be known before the code is made: length counts most, and a far one
// costs extra bits.
int MatchFinder::Worth(const Match& match) noexcept
{
    return 4 * static_cast<int>(match.length) - static_cast<int>(std::bit_width(match.distance));
}

void MatchFinder::Note(const Stretch& in, std::size_t at)
{
    const std::uint32_t position = in.origin + static_cast<std::uint32_t>(at);
    std::uint32_t& head = heads[HashOfFour(in.data + at)];
    previous[position % kWindow] = head;
    head = position;
    threes[HashOfThree(in.data + at)] = position;
}

// Strings of three bytes are not noted: inside a match, one of four bytes serves as well.
void MatchFinder::Skip(const Stretch& in, std::size_t from, std::size_t to)
{
    for (to = std::min(to, in.end - std::min<std::size_t>(in.end, 3)); from < to; ++from) {
        const std::uint32_t position = in.origin + static_cast<std::uint32_t>(from);
        std::uint32_t& head = heads[HashOfFour(in.data + from)];
        previous[position % kWindow] = head;
        head = position;
    }
}

std::size_t MatchFinder::Cut(const std::uint8_t* data, std::uint32_t origin, std::size_t from, std::size_t to,
    std::size_t step, Block& block)
{
    const Stretch in { data, origin, to };
    block.Clear();
    std::size_t at = from, literalsFrom = from;
    while (at < to && block.sequences.size() < kEnoughSequences) {
        Match match = Find(in, at, 2, depth);
        if (match.length == 0) {
            ++block.literals[data[at++]];
            continue;
        }
        std::size_t noted = at + 1;
        while (match.length < kSettled) { // a better match one byte on is worth a literal
            const int looks = depth / (match.length >= kGood ? kLessWhenGood : kLess);
            const Match next = Find(in, at + 1, match.length - 1, looks);
            ++noted;
            if (next.length == 0 || Worth(next) <= Worth(match) + 2)
                break;
            ++block.literals[data[at++]];
            match = next;
        }
        block.AddMatch(static_cast<std::uint32_t>(at - literalsFrom), match.length, match.distance);
        at += match.length;
        if (match.distance <= step && match.length > kRun) // its inside is all alike: the ends tell it apart
            noted = std::max(noted, at - 4);
        Skip(in, noted, at);
        literalsFrom = at;
    }
    block.AddEnd(static_cast<std::uint32_t>(at - literalsFrom));
    return at;
}

} // namespace veltrane::imaging
