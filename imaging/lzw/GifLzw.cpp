#include "imaging/lzw/GifLzw.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace veltrane::imaging {

namespace {

constexpr std::size_t kPiece = 8; // indices that are written at once
constexpr std::size_t kRoom = 32 * 1024;

} // namespace

GifLzw::GifLzw(Bytes blocks, int codeSize, std::size_t most)
    : rest(blocks), clear(1U << codeSize), room(std::max(kRoom, most) + most + kCodes + kPiece)
{
    for (unsigned index = 0; index < clear; ++index)
        strings[index] = Longer({}, kNone, static_cast<std::uint8_t>(index));
    Clear();
}

void GifLzw::Clear() noexcept
{
    width = static_cast<unsigned>(std::bit_width(clear));
    next = static_cast<std::uint16_t>(clear + 2);
    last = kNone;
}

GifLzw::String GifLzw::Longer(const String& string, std::uint16_t code, std::uint8_t index) noexcept
{
    String longer = string;
    std::size_t place = string.length % kPiece;
    if (place == 0) {
        longer.tail = 0;
        longer.before = code;
    }
    if constexpr (std::endian::native == std::endian::big)
        place = kPiece - 1 - place;
    longer.tail |= std::uint64_t { index } << (8 * place);
    longer.first = string.length == 0 ? index : string.first;
    ++longer.length;
    return longer;
}

// At least kMostBits more, as long as there are blocks. Bits above `count` may hold some of the next byte.
GifLzw::Bits GifLzw::Refill(Bits held) noexcept
{
    if (block.size() >= sizeof held.held) {
        std::uint64_t some = 0;
        std::memcpy(&some, block.data(), sizeof some);
        if constexpr (std::endian::native == std::endian::big)
            some = __builtin_bswap64(some);
        held.held |= some << held.count;
        const unsigned bytes = (63 - held.count) / 8;
        held.count += 8 * bytes;
        block = block.subspan(bytes);
        return held;
    }
    while (held.count <= 56) {
        if (block.empty()) {
            if (rest.empty())
                break;
            const std::size_t length = std::min<std::size_t>(rest[0], rest.size() - 1);
            block = rest.subspan(1, length);
            rest = length == 0 ? Bytes {} : rest.subspan(1 + length);
            continue;
        }
        held.held |= std::uint64_t { block[0] } << held.count;
        held.count += 8;
        block = block.subspan(1);
    }
    return held;
}

// The pieces from the last to the first; each spoils what follows it, which is written afterwards.
std::uint8_t* GifLzw::Put(std::uint8_t* to, const String& string) const noexcept
{
    std::uint8_t* const end = to + string.length;
    std::uint8_t* at = to + (string.length - 1U) / kPiece * kPiece;
    std::memcpy(at, &string.tail, kPiece);
    for (std::uint16_t code = string.before; at > to; code = strings[code].before) {
        at -= kPiece;
        std::memcpy(at, &strings[code].tail, kPiece);
    }
    return end;
}

// Fills the room up to `goal` at least.
bool GifLzw::Decode(std::size_t goal)
{
    std::uint8_t* at = room.data() + filled;
    std::uint8_t* const end = room.data() + goal;
    Bits in = bits; // not to be found in memory each time
    while (at < end) {
        if (in.count < width)
            in = Refill(in);
        if (in.count < width)
            return false;
        const auto code = static_cast<std::uint16_t>(in.held & ((1U << width) - 1));
        in.held >>= width;
        in.count -= width;
        if (code == clear) {
            Clear();
            continue;
        }
        const bool adds = last != kNone && next < kCodes;
        if (code == clear + 1 || code > next || (code == next && !adds))
            return false;
        if (adds) {
            strings[next] = Longer(strings[last], last, strings[code == next ? last : code].first);
            ++next;
        }
        if (next == 1U << width && width < kMostBits)
            ++width;
        last = code;
        at = Put(at, strings[code]);
    }
    bits = in;
    filled = static_cast<std::size_t>(at - room.data());
    return true;
}

const std::uint8_t* GifLzw::Next(std::size_t count)
{
    if (filled - taken < count) {
        if (taken + count > room.size() - kCodes - kPiece) {
            std::memmove(room.data(), room.data() + taken, filled - taken);
            filled -= std::exchange(taken, 0);
        }
        if (!Decode(taken + count))
            return nullptr;
    }
    taken += count;
    return room.data() + taken - count;
}

} // namespace veltrane::imaging
