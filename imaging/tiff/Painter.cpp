#include "imaging/tiff/Painter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "imaging/colour/Colour.h"
#include "imaging/tiff/Samples.h"

namespace veltrane::imaging {

namespace {

using Transform = std::shared_ptr<const ColourTransform>;
using Pixel = std::array<std::uint8_t, 4>;

// ---- Tables: palettes, and grey of few bits

// Palettes hold 16-bit numbers, 65535 the lightest. Many writers had bytes to begin with and put them into
// one half of each number, the lower or the upper; these are the factors that make full numbers of them.
struct Widening {
    unsigned factor, divisor;
};

Widening WideningOf(const TiffPage& page, std::size_t colours)
{
    std::uint32_t bits = 0;
    for (const std::uint16_t* const channel : page.palette) {
        for (std::size_t i = 0; i < colours; ++i)
            bits |= channel[i];
    }
    if (bits < 256)
        return { 257, 1 };
    return (bits & 255) == 0 ? Widening { 257, 256 } : Widening { 1, 1 };
}

std::vector<Pixel> PaletteColours(const TiffPage& page)
{
    const std::size_t count = std::size_t { 1 } << page.bits;
    const Widening widening = WideningOf(page, count);
    std::vector<std::uint16_t> wide(4 * count, 65'535);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t c = 0; c < 3; ++c)
            wide[4 * i + c]
                = static_cast<std::uint16_t>(page.palette[c][i] * widening.factor / widening.divisor);
    }
    std::vector<Pixel> colours(count);
    if (const Transform transform = ColourTransform::FromProfile(page.profile, Samples::Rgba16)) {
        transform->Apply(wide.data(), colours.data()->data(), count);
        return colours;
    }
    for (std::size_t i = 0; i < 4 * count; ++i)
        colours[i / 4][i % 4] = static_cast<std::uint8_t>((wide[i] * 255u + 32'895) >> 16);
    return colours;
}

std::vector<Pixel> GreyColours(const TiffPage& page)
{
    const std::size_t count = std::size_t { 1 } << page.bits, top = count - 1;
    const std::size_t flip = page.numbers == TiffNumbers::Signed ? std::size_t { 1 } << (page.bits - 1) : 0;
    std::vector<std::uint8_t> shades(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t light = page.minIsWhite ? top - (i ^ flip) : i ^ flip;
        shades[i] = static_cast<std::uint8_t>((light * 255 + top / 2) / top);
    }
    std::vector<Pixel> colours(count);
    if (const Transform transform = ColourTransform::FromProfile(page.profile, Samples::Grey8)) {
        transform->Apply(shades.data(), colours.data()->data(), count);
        return colours;
    }
    std::ranges::transform(shades, colours.begin(), [](std::uint8_t s) { return Pixel { s, s, s, 255 }; });
    return colours;
}

std::vector<Pixel> Colours(const TiffPage& page)
{
    return page.colour == TiffColour::Palette ? PaletteColours(page) : GreyColours(page);
}

// One sample of 1, 2, 4 or 8 bits a pixel: a whole byte is looked up at once.
class BytePainter final : public TiffPainter {
public:
    explicit BytePainter(const TiffPage& page) : perByte(static_cast<int>(8 / page.bits)), table(256)
    {
        const std::vector<Pixel> colours = Colours(page);
        for (std::size_t byte = 0; byte < table.size(); ++byte) {
            for (unsigned i = 0; i < 8 / page.bits; ++i)
                table[byte][i] = colours[byte >> (8 - page.bits * (i + 1)) & (colours.size() - 1)];
        }
    }
    void Paint(const TiffRow& row, std::uint8_t* rgba) override
    {
        if (perByte == 1)
            return PaintBytes<1>(row, rgba);
        return perByte == 2 ? PaintBytes<2>(row, rgba)
            : perByte == 4  ? PaintBytes<4>(row, rgba)
                            : PaintBytes<8>(row, rgba);
    }

private:
    template<int PerByte>
    void PaintBytes(const TiffRow& row, std::uint8_t* rgba) const
    {
        const std::uint8_t* from = row.planes[0];
        int left = row.pixels;
        for (; left >= PerByte; left -= PerByte, rgba += 4 * PerByte)
            std::memcpy(rgba, &table[*from++], 4 * PerByte);
        if (left > 0)
            std::memcpy(rgba, &table[*from], 4 * static_cast<std::size_t>(left));
    }

    int perByte;
    std::vector<std::array<Pixel, 8>> table;
};

// Palettes of other sizes, or with alpha.
class PalettePainter final : public TiffPainter {
public:
    explicit PalettePainter(const TiffPage& page) : page(page), colours(PaletteColours(page)) { }

    void Paint(const TiffRow& row, std::uint8_t* rgba) override
    {
        const auto pixels = static_cast<std::size_t>(row.pixels);
        const std::size_t samples = page.planar ? row.planes.size() : page.samples;
        indices.resize(pixels * samples);
        if (!page.planar)
            UnpackIndices(page, row.planes[0], pixels * samples, indices.data(), 1);
        for (std::size_t i = 0; page.planar && i < samples; ++i)
            UnpackIndices(page, row.planes[i], pixels, indices.data() + i, samples);
        const std::size_t alpha = page.planar ? 1 : static_cast<std::size_t>(page.alpha);
        for (std::size_t i = 0; i < pixels; ++i) {
            Pixel pixel = colours[indices[i * samples]];
            if (page.alpha >= 0)
                pixel[3] = Alpha(indices[i * samples + alpha]);
            std::memcpy(rgba + 4 * i, pixel.data(), pixel.size());
        }
        NoteAlpha(rgba, row.pixels);
    }

private:
    [[nodiscard]] std::uint8_t Alpha(std::uint16_t stored) const
    {
        const std::uint32_t top = (1u << page.bits) - 1;
        return static_cast<std::uint8_t>((stored * 255u + top / 2) / top);
    }

    const TiffPage& page;
    std::vector<Pixel> colours;
    std::vector<std::uint16_t> indices;
};

// ---- Eight bits a sample, samples together

class RgbPainter final : public TiffPainter {
public:
    explicit RgbPainter(const TiffPage& page)
        : transform(ColourTransform::FromProfile(page.profile, Samples::Rgba8)), hasAlpha(page.alpha >= 0)
    {
    }
    void Paint(const TiffRow& row, std::uint8_t* rgba) override
    {
        const auto pixels = static_cast<std::size_t>(row.pixels);
        if (hasAlpha)
            std::memcpy(rgba, row.planes[0], 4 * pixels);
        else
            Widen(row.planes[0], rgba, pixels);
        if (transform)
            transform->Apply(rgba, rgba, pixels);
        if (hasAlpha)
            NoteAlpha(rgba, row.pixels);
    }

private:
    // Four bytes are read for three while there is one behind them.
    static void Widen(const std::uint8_t* rgb, std::uint8_t* rgba, std::size_t pixels)
    {
        for (; pixels > 1; --pixels, rgb += 3, rgba += 4) {
            std::memcpy(rgba, rgb, 4);
            rgba[3] = 255;
        }
        std::memcpy(rgba, rgb, 3);
        rgba[3] = 255;
    }

    Transform transform;
    bool hasAlpha;
};

class InkPainter final : public TiffPainter {
public:
    explicit InkPainter(const TiffPage& page)
        : transform(ColourTransform::FromProfile(page.profile, Samples::Cmyk8))
    {
        if (!transform)
            transform = ColourTransform::FromUntaggedInks(Samples::Cmyk8);
    }
    void Paint(const TiffRow& row, std::uint8_t* rgba) override
    {
        transform->Apply(row.planes[0], rgba, static_cast<std::size_t>(row.pixels));
    }

private:
    Transform transform;
};

// Whether a byte holds one sample, or several, that tell a pixel each by a table.
bool GoesByTable(const TiffPage& page)
{
    const bool whole = page.numbers != TiffNumbers::Float;
    const bool table = page.colour == TiffColour::Palette || (page.colour == TiffColour::Grey && whole);
    return table && page.samples == 1
        && (page.bits == 1 || page.bits == 2 || page.bits == 4 || page.bits == 8);
}

} // namespace

std::optional<Palette> ByteColours(const TiffPage& page)
{
    if (!GoesByTable(page) || page.bits != 8 || page.orientation != Orientation::TopLeft)
        return std::nullopt;
    const std::vector<Pixel> colours = Colours(page);
    Palette palette {};
    static_assert(sizeof palette == 256 * sizeof(Pixel));
    std::memcpy(palette.data(), colours.data(), sizeof palette);
    return palette;
}

std::unique_ptr<TiffPainter> MakePainter(const TiffPage& page)
{
    if (GoesByTable(page))
        return std::make_unique<BytePainter>(page);
    if (page.colour == TiffColour::Palette)
        return std::make_unique<PalettePainter>(page);
    const bool bytes = page.numbers == TiffNumbers::Unsigned && page.bits == 8 && !page.planar;
    const bool straightAlpha = page.alpha == 3 && !page.associated;
    if (bytes && page.colour == TiffColour::Rgb && page.samples == (straightAlpha ? 4u : 3u))
        return std::make_unique<RgbPainter>(page);
    if (bytes && page.colour == TiffColour::Inks && page.samples == 4)
        return std::make_unique<InkPainter>(page);
    return MakeGeneralPainter(page);
}

} // namespace veltrane::imaging
