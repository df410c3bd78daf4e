#include "imaging/png/Packing.h"

#include <cstring>

#include "imaging/bits/Processor.h"

namespace veltrane::imaging::png {

namespace {

void PackRgbFrom(const std::uint8_t* rgba, std::uint8_t* row, std::size_t i, std::size_t width) noexcept
{
    for (; i < width; ++i)
        std::memcpy(row + 3 * i, rgba + 4 * i, 4);
}

#ifdef __x86_64__
// Eight pixels a step, where the processor can move bytes about in a register: within its halves first.
[[gnu::target("avx2")]] void PackRgbAvx2(
    const std::uint8_t* rgba, std::uint8_t* row, std::size_t width) noexcept
{
    using Pixels8 = std::uint8_t __attribute__((vector_size(32)));
    using Words8 = std::uint32_t __attribute__((vector_size(32)));
    std::size_t i = 0;
    for (; i + 8 <= width; i += 8) {
        Pixels8 pixels;
        std::memcpy(&pixels, rgba + 4 * i, sizeof pixels);
        pixels = __builtin_shufflevector(pixels, pixels, 0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 3, 7, 11, 15,
            16, 17, 18, 20, 21, 22, 24, 25, 26, 28, 29, 30, 19, 23, 27, 31);
        const auto halves = reinterpret_cast<Words8>(pixels);
        const Words8 words = __builtin_shufflevector(halves, halves, 0, 1, 2, 4, 5, 6, 3, 7);
        std::memcpy(row + 3 * i, &words, sizeof words);
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

} // namespace veltrane::imaging::png
