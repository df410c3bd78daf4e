#include "imaging/pict/stills/StillDecoders.h"

#include <algorithm>
#include <span>

#include "imaging/Fault.h"
#include "imaging/pict/drawing/PixelMap.h"
#include "imaging/pict/drawing/PixelRows.h"

namespace veltrane::imaging::pict {

namespace {

// 24 bits have no PixMap of their own.
void DecodeTriples(ByteReader& in, std::size_t rowBytes, StillPixels& pixels)
{
    for (int y = 0; y < pixels.Height(); ++y) {
        const Bytes row = in.Take(rowBytes);
        for (int x = 0; x < pixels.Width(); ++x) {
            const auto at = static_cast<std::size_t>(x) * 3;
            pixels.Set(x, y, MakeRgba(row[at], row[at + 1], row[at + 2]));
        }
    }
}

std::size_t RawRowBytes(const Still& still, int depth)
{
    const auto words = (static_cast<std::size_t>(still.width) * static_cast<std::size_t>(depth) + 15) / 16;
    const std::size_t each = still.data.size() / static_cast<std::size_t>(still.height);
    return std::max(words * 2, each);
}

} // namespace

StillPixels::StillPixels(int width, int height)
    : bitmap(Bitmap::Uninitialised(width, height)), rows(reinterpret_cast<Rgba*>(bitmap.Writable()))
{
    std::fill_n(rows, static_cast<std::size_t>(width) * static_cast<std::size_t>(height), kBlack);
    bitmap.Opaque(true);
}

void DecodeRaw(const Still& still, StillPixels& pixels)
{
    const int depth = still.depth > 32 ? still.depth - 32 : still.depth;
    const std::size_t rowBytes = RawRowBytes(still, depth);
    ByteReader in(still.data, std::endian::big);
    if (depth == 24) {
        DecodeTriples(in, rowBytes, pixels);
        return;
    }
    if (depth != 1 && depth != 2 && depth != 4 && depth != 8 && depth != 16 && depth != 32)
        throw Fault(Fault::QuickTimeDepthUnknown);
    PixelMap map;
    map.rowBytes = static_cast<int>(rowBytes);
    map.bounds = { 0, 0, still.width, still.height };
    map.pixelSize = depth;
    map.palette = still.palette;
    Budget budget(std::int64_t { still.width } * still.height, static_cast<std::int64_t>(still.data.size()));
    PixelRows rows(map, Packing::Raw, in, budget);
    for (int y = 0; y < still.height; ++y)
        rows.Next({ pixels.Row(y), static_cast<std::size_t>(still.width) });
}

} // namespace veltrane::imaging::pict
