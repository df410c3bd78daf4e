#include "platform/codecs/png/Form.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "platform/codecs/Processor.h"
#include "platform/codecs/png/Pixel.h"

namespace veltrane::codecs::png {

namespace {

// What may still be said of all pixels seen.
struct Findings {
    bool opaque = true;
    bool grey = true;
    bool indexed = true;
};

bool RowIsOpaque(const std::uint8_t* rgba, std::size_t width) noexcept
{
    Pixel all = ~Pixel { 0 };
    for (std::size_t i = 0; i < width; ++i)
        all &= LoadPixel(rgba + 4 * i);
    return Channels(all)[3] == 255;
}

bool RowIsGrey(const std::uint8_t* rgba, std::size_t width) noexcept
{
    Pixel differences = 0; // of each channel from the next one
    for (std::size_t i = 0; i < width; ++i) {
        const Pixel pixel = LoadPixel(rgba + 4 * i);
        differences |= pixel ^ std::rotr(pixel, std::endian::native == std::endian::little ? 8 : -8);
    }
    return Channels(differences)[0] == 0 && Channels(differences)[1] == 0;
}

Findings Look(const Bitmap& picture, PaletteIndex& palette)
{
    const auto width = static_cast<std::size_t>(picture.Width());
    Findings found;
    for (int y = 0; y < picture.Height(); ++y) {
        const std::uint8_t* const row = picture.Row(y);
        found.opaque = found.opaque && (picture.Opaque() || RowIsOpaque(row, width));
        found.grey = found.grey && RowIsGrey(row, width);
        palette.Add(row, width);
        found.indexed = !palette.Full();
        const bool nothingElse = !found.opaque || picture.Opaque();
        if (!found.grey && !found.indexed && nothingElse)
            break;
    }
    return found;
}

int DepthFor(std::size_t colours) noexcept
{
    return colours <= 2 ? 1 : colours <= 4 ? 2 : colours <= 16 ? 4 : 8;
}

// The fewest bits that tell every grey of the palette: 1 bit knows 0 and 255, 2 bits the multiples of 85,
// 4 bits those of 17.
int GreyDepth(const PaletteIndex& palette) noexcept
{
    int depth = 1;
    for (std::size_t i = 0; i < palette.Size(); ++i) {
        const unsigned grey = Channels(palette.Pixels()[i])[0];
        while (depth < 8 && grey % (255U / ((1U << depth) - 1)) != 0)
            depth *= 2;
    }
    return depth;
}

ColourType DirectColour(const Findings& found) noexcept
{
    if (found.grey)
        return found.opaque ? ColourType::Grey : ColourType::GreyAlpha;
    return found.opaque ? ColourType::Rgb : ColourType::Rgba;
}

// A palette takes room itself, and what it saves would have been compressed.
bool PalettePays(const Form& direct, std::size_t pixels) noexcept
{
    const std::size_t colours = direct.palette.Size(), bits = static_cast<std::size_t>(DepthFor(colours));
    return direct.BitsPerPixel() > bits && pixels * (direct.BitsPerPixel() - bits) / 8 / 3 > 24 + 4 * colours;
}

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

void PackGrey(const std::uint8_t* rgba, std::uint8_t* row, std::size_t width) noexcept
{
    for (std::size_t i = 0; i < width; ++i)
        row[i] = rgba[4 * i];
}

void PackGreyAlpha(const std::uint8_t* rgba, std::uint8_t* row, std::size_t width) noexcept
{
    for (std::size_t i = 0; i < width; ++i) {
        row[2 * i] = rgba[4 * i];
        row[2 * i + 1] = rgba[4 * i + 3];
    }
}

// Closes up samples of one byte each, in place. A grey sample's upper bits tell it all.
void Close(std::uint8_t* row, std::size_t width, unsigned depth, unsigned dropped) noexcept
{
    const std::size_t inByte = 8 / depth;
    for (std::size_t i = 0; i < width; i += inByte) {
        unsigned byte = 0;
        for (std::size_t k = 0; k < inByte; ++k)
            byte = byte << depth | (i + k < width ? unsigned { row[i + k] } >> dropped : 0U);
        row[i / inByte] = static_cast<std::uint8_t>(byte);
    }
}

} // namespace

std::size_t Form::BitsPerPixel() const noexcept
{
    const Header header { .depth = depth, .colour = colour };
    return static_cast<std::size_t>(header.BitsPerPixel());
}

Form FormOf(const Bitmap& picture)
{
    Form form;
    const Findings found = Look(picture, form.palette);
    form.colour = DirectColour(found);
    if (form.colour == ColourType::Grey && found.indexed)
        form.depth = GreyDepth(form.palette);
    const std::size_t pixels
        = static_cast<std::size_t>(picture.Width()) * static_cast<std::size_t>(picture.Height());
    if (found.indexed && PalettePays(form, pixels)) {
        form.colour = ColourType::Palette;
        form.depth = DepthFor(form.palette.Size());
        form.palette.PutTransparentFirst();
    }
    return form;
}

void PackRow(const Form& form, const std::uint8_t* rgba, std::uint8_t* row, std::size_t width)
{
    const auto depth = static_cast<unsigned>(form.depth);
    switch (form.colour) {
    case ColourType::Rgba: std::memcpy(row, rgba, 4 * width); break;
    case ColourType::Rgb: PackRgb(rgba, row, width); break;
    case ColourType::GreyAlpha: PackGreyAlpha(rgba, row, width); break;
    case ColourType::Grey:
        PackGrey(rgba, row, width);
        if (depth < 8)
            Close(row, width, depth, 8 - depth);
        break;
    case ColourType::Palette:
        form.palette.Write(rgba, row, width);
        if (depth < 8)
            Close(row, width, depth, 0);
        break;
    }
}

} // namespace veltrane::codecs::png
