#include "imaging/pict/drawing/PackBits.h"

#include <algorithm>
#include <cstring>

namespace veltrane::imaging::pict {

namespace {

constexpr std::uint8_t kNothing = 128; ///< a filler that some packers write

} // namespace

std::size_t UnpackBits(Bytes packed, std::size_t unit, std::span<std::uint8_t> out) noexcept
{
    std::size_t made = 0;
    while (!packed.empty() && made < out.size()) {
        const std::size_t head = packed.front();
        packed = packed.subspan(1);
        if (head == kNothing)
            continue;
        const bool copied = head < kNothing;
        const std::size_t wanted = (copied ? head + 1 : 257 - head) * unit;
        const std::size_t room = std::min(wanted, out.size() - made);
        const std::size_t stored = std::min(copied ? wanted : unit, packed.size());
        if (copied) {
            std::memcpy(out.data() + made, packed.data(), std::min(room, stored));
            made += std::min(room, stored);
        } else if (stored == unit) {
            for (std::size_t i = 0; i < room; ++i)
                out[made + i] = packed[i % unit];
            made += room;
        }
        packed = packed.subspan(stored);
    }
    return made;
}

} // namespace veltrane::imaging::pict
