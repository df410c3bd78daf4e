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
    for (const std::uint8_t* const end = rgba + 4 * pixels; rgba != end; rgba += 4, opaque += 4) {
        const unsigned alpha = rgba[3];
        for (int i = 0; i < 3; ++i)
            opaque[i] = static_cast<std::uint8_t>((rgba[i] * alpha + 255u * (255u - alpha) + 127u) / 255u);
        opaque[3] = 255;
    }
}

} // namespace veltrane::codecs::jpeg
