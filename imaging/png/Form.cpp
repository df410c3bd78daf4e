#include "imaging/png/Form.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <span>
#include <tuple>
#include <vector>

#include "imaging/png/Packing.h"
#include "imaging/png/Pixel.h"

namespace veltrane::imaging::png {

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

// Calls `look` with the place and the length of each stretch of a row that differs from the one above, in
// pixels of `bytes` bytes. Drawings repeat much of the row above, and comparing takes less than looking.
// `above` is null for the first row.
template<class Look>
void ForEachNew(
    const std::uint8_t* row, const std::uint8_t* above, std::size_t width, std::size_t bytes, Look look)
{
    constexpr std::size_t kAtOnce = 64;
    for (std::size_t i = 0; i < width; i += kAtOnce) {
        const std::size_t some = std::min(kAtOnce, width - i);
        if (above == nullptr || std::memcmp(row + i * bytes, above + i * bytes, some * bytes) != 0)
            look(i, some);
    }
}

// The indices that occur, in the order in which they are first met.
std::vector<std::uint8_t> MetIndices(const Bitmap& picture)
{
    std::array<bool, std::tuple_size_v<Palette>> met {};
    std::vector<std::uint8_t> order;
    const std::uint8_t* above = nullptr;
    for (int y = 0; y < picture.Height() && order.size() < met.size(); ++y) {
        const std::uint8_t* const row = picture.Indices(y);
        ForEachNew(
            row, above, static_cast<std::size_t>(picture.Width()), 1, [&](std::size_t at, std::size_t count) {
                for (std::size_t i = at; i < at + count; ++i) {
                    if (!met[row[i]]) [[unlikely]] {
                        met[row[i]] = true;
                        order.push_back(row[i]);
                    }
                }
            });
        above = row;
    }
    return order;
}

// The pixels of those indices, as a row.
std::vector<std::uint8_t> PixelsOf(const Palette& colours, std::span<const std::uint8_t> met)
{
    std::vector<std::uint8_t> rgba(met.size() * sizeof(Pixel));
    for (std::size_t i = 0; i < met.size(); ++i)
        std::memcpy(rgba.data() + i * sizeof(Pixel), &colours[met[i]], sizeof(Pixel));
    return rgba;
}

Findings LookAtPalette(std::span<const std::uint8_t> rgba, PaletteIndex& palette)
{
    const std::size_t count = rgba.size() / sizeof(Pixel);
    palette.Add(rgba.data(), count);
    return { RowIsOpaque(rgba.data(), count), RowIsGrey(rgba.data(), count), !palette.Full() };
}

Findings LookAtPixels(const Bitmap& picture, PaletteIndex& palette)
{
    Findings found;
    const std::uint8_t* above = nullptr;
    for (int y = 0; y < picture.Height(); ++y) {
        const std::uint8_t* const row = picture.Row(y);
        ForEachNew(row, above, static_cast<std::size_t>(picture.Width()), sizeof(Pixel),
            [&](std::size_t at, std::size_t count) {
                const std::uint8_t* const rgba = row + at * sizeof(Pixel);
                found.opaque = found.opaque && (picture.Opaque() || RowIsOpaque(rgba, count));
                found.grey = found.grey && RowIsGrey(rgba, count);
                palette.Add(rgba, count);
            });
        found.indexed = !palette.Full();
        const bool nothingElse = !found.opaque || picture.Opaque();
        if (!found.grey && !found.indexed && nothingElse)
            break;
        above = row;
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

void ChooseForm(Form& form, const Findings& found, std::size_t pixels)
{
    form.colour = DirectColour(found);
    if (form.colour == ColourType::Grey && found.indexed)
        form.depth = GreyDepth(form.palette);
    if (found.indexed && PalettePays(form, pixels)) {
        form.colour = ColourType::Palette;
        form.depth = DepthFor(form.palette.Size());
        form.palette.PutTransparentFirst();
    }
}

// The sample of each index that was met; `rgba` are their pixels.
std::array<std::uint8_t, 256> SamplesOf(
    const Form& form, std::span<const std::uint8_t> met, std::span<const std::uint8_t> rgba)
{
    std::array<std::uint8_t, 256> row {}, samples {};
    PackSamples(form, rgba.data(), row.data(), met.size());
    for (std::size_t i = 0; i < met.size(); ++i)
        samples[met[i]] = row[i];
    return samples;
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
    const std::size_t pixels
        = static_cast<std::size_t>(picture.Width()) * static_cast<std::size_t>(picture.Height());
    if (picture.Indices(0) == nullptr) {
        ChooseForm(form, LookAtPixels(picture, form.palette), pixels);
        return form;
    }
    const std::vector<std::uint8_t> met = MetIndices(picture), rgba = PixelsOf(picture.Colours(), met);
    ChooseForm(form, LookAtPalette(rgba, form.palette), pixels);
    if (form.BitsPerPixel() <= 8)
        form.samples = SamplesOf(form, met, rgba);
    return form;
}

} // namespace veltrane::imaging::png
