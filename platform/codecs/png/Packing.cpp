#include "platform/codecs/png/Packing.h"

#include <cstring>

#include "platform/codecs/Processor.h"

namespace veltrane::codecs::png {

namespace {

void PackRgbFrom(const std::uint8_t* rgba, std::uint8_t* row, std::size_t i, std::size_t width) noexcept
{
    for (; i < width; ++i)
        std::memcpy(row + 3 * i, rgba + 4 * i, 4);
}

#ifdef __x86_64__
// Four pixels a step, where the processor can move bytes about in a register.
[[gnu::target("avx2")]] void PackRgbAvx2(
    const std::uint8_t* rgba, std::uint8_t* row, std::size_t width) noexcept
{
    using Pixels4 = std::uint8_t __attribute__((vector_size(16)));
    std::size_t i = 0;
    for (; i + 4 <= width; i += 4) {
        Pixels4 pixels;
        std::memcpy(&pixels, rgba + 4 * i, sizeof pixels);
        pixels
            = __builtin_shufflevector(pixels, pixels, 0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 3, 7, 11, 15);
        std::memcpy(row + 3 * i, &pixels, sizeof pixels);
    }
    PackRgbFrom(rgba, row, i, width);
}
#endif

void PackRgb(const std::uint8_t* rgba, std::uint8_t* row, std::size_t width) noexcept
{
#ifdef __x86_64__
    if (HasAvx2())
        return PackRgbAvx2(rgba, row, width);
#endif
    PackRgbFrom(rgba, row, 0, width);
}

// A grey's upper bits tell it all where fewer are stored.
void PackGrey(const std::uint8_t* rgba, std::uint8_t* row, std::size_t width, int depth) noexcept
{
    const int dropped = 8 - depth;
    for (std::size_t i = 0; i < width; ++i)
        row[i] = static_cast<std::uint8_t>(rgba[4 * i] >> dropped);
}

void PackGreyAlpha(const std::uint8_t* rgba, std::uint8_t* row, std::size_t width) noexcept
{
    for (std::size_t i = 0; i < width; ++i) {
        row[2 * i] = rgba[4 * i];
        row[2 * i + 1] = rgba[4 * i + 3];
    }
}

// Closes up samples of one byte each, in place.
void Close(std::uint8_t* row, std::size_t width, int depth) noexcept
{
    if (depth == 8)
        return;
    const auto bits = static_cast<unsigned>(depth);
    const std::size_t inByte = 8 / bits;
    for (std::size_t i = 0; i < width; i += inByte) {
        unsigned byte = 0;
        for (std::size_t k = 0; k < inByte; ++k)
            byte = byte << bits | (i + k < width ? unsigned { row[i + k] } : 0U);
        row[i / inByte] = static_cast<std::uint8_t>(byte);
    }
}

} // namespace

void PackSamples(const Form& form, const std::uint8_t* rgba, std::uint8_t* row, std::size_t width)
{
    switch (form.colour) {
    case ColourType::Rgba: std::memcpy(row, rgba, 4 * width); break;
    case ColourType::Rgb: PackRgb(rgba, row, width); break;
    case ColourType::GreyAlpha: PackGreyAlpha(rgba, row, width); break;
    case ColourType::Grey: PackGrey(rgba, row, width, form.depth); break;
    case ColourType::Palette: form.palette.Write(rgba, row, width); break;
    }
}

void PackRow(const Form& form, const std::uint8_t* rgba, std::uint8_t* row, std::size_t width)
{
    PackSamples(form, rgba, row, width);
    Close(row, width, form.depth);
}

void PackIndices(const Form& form, const std::uint8_t* indices, std::uint8_t* row, std::size_t width)
{
    for (std::size_t i = 0; i < width; ++i)
        row[i] = (*form.samples)[indices[i]];
    Close(row, width, form.depth);
}

} // namespace veltrane::codecs::png
