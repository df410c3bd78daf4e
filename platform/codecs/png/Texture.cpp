#include "platform/codecs/png/Texture.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace veltrane::codecs::png {

namespace {

// The largest difference of a channel between two pixels.
int Step(const std::uint8_t* a, const std::uint8_t* b) noexcept
{
    int largest = 0;
    for (int k = 0; k < 4; ++k)
        largest = std::max(largest, std::abs(a[k] - b[k]));
    return largest;
}

} // namespace

Texture TextureOf(const Bitmap& picture, int from, int to)
{
    constexpr int kRowStep = 16, kSmall = 4;
    std::size_t equal = 0, small = 0, large = 0;
    std::vector<std::uint8_t> row(picture.Stride());
    for (int y = from; y < to; y += kRowStep) {
        picture.CopyRow(y, row.data());
        for (std::size_t i = 4; i < row.size(); i += 4) {
            const int step = Step(row.data() + i, row.data() + i - 4);
            equal += step == 0;
            small += step != 0 && step <= kSmall;
            large += step > kSmall;
        }
    }
    if (3 * equal < small + large)
        return Texture::Natural;
    return 2 * small >= large ? Texture::Shaded : Texture::Hard;
}

} // namespace veltrane::codecs::png
