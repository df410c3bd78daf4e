#include "imaging/pict/drawing/Pattern.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "imaging/Fault.h"
#include "imaging/pict/drawing/PixelMap.h"
#include "imaging/pict/drawing/PixelRows.h"

namespace veltrane::imaging::pict {

namespace {

constexpr int kOwnPixels = 1;
constexpr int kDithered = 2; ///< an RGB colour that a screen of few colours would have to mix
constexpr int kLargestSide = 1024; ///< patterns have 8 to 64 pixels a side

// Where `at` falls in a tile of `size`, for negative positions too.
int InTile(int at, int size) noexcept
{
    const int rest = at % size;
    return rest < 0 ? rest + size : rest;
}

} // namespace

Pattern::Pattern(int width, int height, std::vector<Rgba> tile, bool coloured)
    : width(width)
    , height(height)
    , pixels(std::move(tile))
    , coloured(coloured)
    , uniform(std::ranges::all_of(pixels, [this](Rgba pixel) { return pixel == pixels.front(); }))
{
}

Pattern Pattern::FromBits(Bytes eight)
{
    std::vector<Rgba> pixels;
    for (const std::uint8_t row : eight) {
        for (int bit = 7; bit >= 0; --bit)
            pixels.push_back((row >> bit & 1) != 0 ? kBlack : kWhite);
    }
    return { 8, 8, std::move(pixels), false };
}

Pattern Pattern::Read(ByteReader& in, Budget& budget)
{
    const int type = in.I16();
    const Bytes old = in.Take(8);
    if (type == kDithered)
        return { 1, 1, { ReadRgbColor(in) }, true };
    if (type != kOwnPixels)
        return FromBits(old);
    PixelMap map = ReadPixelMap(in, MapKind::Pixels);
    const int across = map.bounds.Width();
    const int down = map.bounds.Height();
    if (map.bounds.Empty() || across > kLargestSide || down > kLargestSide)
        throw Fault(Fault::PictPatternDamaged);
    map.palette = ReadColourTable(in);
    std::vector<Rgba> pixels(static_cast<std::size_t>(across) * static_cast<std::size_t>(down));
    PixelRows rows(map, Packing::Packed, in, budget);
    for (int y = 0; y < down; ++y)
        rows.Next(std::span(pixels).subspan(static_cast<std::size_t>(y) * static_cast<std::size_t>(across),
            static_cast<std::size_t>(across)));
    return { across, down, std::move(pixels), true };
}

bool Pattern::Uniform(Rgba& colour) const noexcept
{
    colour = pixels.front();
    return uniform;
}

void Pattern::Row(int x, int y, std::span<Rgba> out) const noexcept
{
    const Rgba* const tile = pixels.data() + static_cast<std::ptrdiff_t>(InTile(y, height)) * width;
    int column = InTile(x, width);
    for (Rgba& pixel : out) {
        pixel = tile[column];
        if (++column == width)
            column = 0;
    }
}

} // namespace veltrane::imaging::pict
