#include "imaging/png/Texture.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace veltrane::imaging::png {

namespace {

using Bytes16 = std::uint8_t __attribute__((vector_size(16))); // of four pixels
using Pixels4 = std::uint32_t __attribute__((vector_size(16)));
using Flags4 = std::int32_t __attribute__((vector_size(16)));

// How many steps from a pixel to the next are none at all, and how many are more than small.
class Steps {
public:
    // Steps that lead to `count` pixels, four at most.
    void Add(const std::uint8_t* rgba, std::size_t count) noexcept
    {
        constexpr std::uint8_t kSmall = 4; // of the channel that differs most
        Bytes16 here {}, before {};
        std::memcpy(&here, rgba, 4 * count);
        std::memcpy(&before, rgba - 4, 4 * count);
        const Bytes16 differences = here > before ? here - before : before - here;
        const auto beyond = reinterpret_cast<Bytes16>(differences > kSmall);
        equal -= reinterpret_cast<Pixels4>(differences) == 0;
        large -= reinterpret_cast<Pixels4>(beyond) != 0;
        all += count;
        added += 4;
    }

    // Those that were told as four, but were fewer, counted as equal.
    [[nodiscard]] std::size_t Equal() const noexcept { return Sum(equal) - (added - all); }
    [[nodiscard]] std::size_t Large() const noexcept { return Sum(large); }
    [[nodiscard]] std::size_t All() const noexcept { return all; }

private:
    [[nodiscard]] static std::size_t Sum(Flags4 counts) noexcept
    {
        return static_cast<std::size_t>(counts[0] + counts[1] + counts[2] + counts[3]);
    }

    Flags4 equal {}, large {};
    std::size_t all = 0, added = 0;
};

} // namespace

Texture TextureOf(const Bitmap& picture, int from, int to)
{
    constexpr int kRowStep = 16;
    const auto width = static_cast<std::size_t>(picture.Width());
    const bool copies = picture.Indices(0) != nullptr;
    std::vector<std::uint8_t> copy(copies ? picture.Stride() : 0);
    Steps steps;
    for (int y = from; y < to; y += kRowStep) {
        if (copies)
            picture.CopyRow(y, copy.data());
        const std::uint8_t* const row = copies ? copy.data() : picture.Row(y);
        for (std::size_t x = 1; x < width; x += 4)
            steps.Add(row + 4 * x, std::min<std::size_t>(4, width - x));
    }
    const std::size_t equal = steps.Equal(), large = steps.Large(), small = steps.All() - equal - large;
    if (3 * equal < small + large)
        return Texture::Natural;
    return 2 * small >= large ? Texture::Shaded : Texture::Hard;
}

} // namespace veltrane::imaging::png
