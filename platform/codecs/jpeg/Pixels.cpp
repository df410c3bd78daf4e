#include "platform/codecs/jpeg/Pixels.h"

#include <cstring>

namespace veltrane::codecs::jpeg {

namespace {

struct Row {
    std::uint32_t differences = 0; // bits that some pixel has in one channel and not in the next
    std::uint32_t alpha = 0xFF; // bits that all alphas have
};

Row ExamineRow(const std::uint8_t* rgba, std::size_t pixels)
{
    Row row;
    for (const std::uint8_t* const end = rgba + 4 * pixels; rgba != end; rgba += 4) {
        row.differences |= static_cast<std::uint32_t>((rgba[0] ^ rgba[1]) | (rgba[1] ^ rgba[2]));
        row.alpha &= rgba[3];
    }
    return row;
}

using Pair = std::uint8_t __attribute__((vector_size(8))); // two pixels
using Words = std::uint16_t __attribute__((vector_size(16)));

// `bytes` of at most two pixels.
inline void LayPair(const std::uint8_t* rgba, std::uint8_t* opaque, std::size_t bytes)
{
    constexpr Pair kAlphas { 0, 0, 0, 255, 0, 0, 0, 255 };
    Pair pair {};
    std::memcpy(&pair, rgba, bytes);
    const Words channels = __builtin_convertvector(pair, Words);
    const Words alphas = __builtin_shufflevector(channels, channels, 3, 3, 3, 3, 7, 7, 7, 7);
    const Words laid = (channels * alphas + (255 - alphas) * 255 + 127) / 255;
    pair = __builtin_convertvector(laid, Pair) | kAlphas;
    std::memcpy(opaque, &pair, bytes);
}

} // namespace

Content Examine(const Bitmap& picture)
{
    Content content { true, true };
    for (int y = 0; y < picture.Height() && (content.grey || (content.opaque && !picture.Opaque())); ++y) {
        const Row row = ExamineRow(picture.Row(y), static_cast<std::size_t>(picture.Width()));
        content.grey = content.grey && row.differences == 0;
        content.opaque = content.opaque && row.alpha == 0xFF;
    }
    content.opaque = content.opaque || picture.Opaque();
    return content;
}

void LayOnWhite(const std::uint8_t* rgba, std::uint8_t* opaque, std::size_t pixels)
{
    for (; pixels >= 2; pixels -= 2, rgba += sizeof(Pair), opaque += sizeof(Pair))
        LayPair(rgba, opaque, sizeof(Pair));
    LayPair(rgba, opaque, 4 * pixels);
}

} // namespace veltrane::codecs::jpeg
