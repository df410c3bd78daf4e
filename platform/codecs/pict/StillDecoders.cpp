#include "platform/codecs/pict/StillDecoders.h"

#include <algorithm>
#include <span>

#include "platform/Exceptions.h"
#include "platform/codecs/pict/PixelMap.h"
#include "platform/codecs/pict/PixelRows.h"

namespace veltrane::codecs::pict {

namespace {

constexpr std::uint32_t kBmpHeader = 14; ///< the file's, before the picture's own

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

Rgba FromFiveBits(std::uint16_t word) noexcept
{
    const auto widened = [word](int shift) {
        const int five = word >> shift & 31;
        return static_cast<std::uint8_t>(five << 3 | five >> 2);
    };
    return MakeRgba(widened(10), widened(5), widened(0));
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
        throw UnsupportedFormatException("profondeur d'image QuickTime inconnue");
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

bool LooksLikeBmp(Bytes data) noexcept
{
    return data.size() > kBmpHeader + 40 && data[0] == 'B' && data[1] == 'M';
}

// Source: Microsoft, "BITMAPFILEHEADER" and "BITMAPINFOHEADER".
Bitmap DecodeBmp(Bytes data, const Limits& limits)
{
    ByteReader in(data, std::endian::little);
    in.Seek(10);
    const std::uint32_t pixelsAt = in.U32();
    const std::uint32_t header = in.U32();
    const std::int64_t width = in.I32();
    const std::int64_t signedHeight = in.I32();
    in.Skip(2); // planes
    const int depth = in.U16();
    const std::uint32_t compression = in.U32();
    const std::int64_t height = signedHeight < 0 ? -signedHeight : signedHeight;
    if (header < 40 || compression != 0
        || (depth != 1 && depth != 4 && depth != 8 && depth != 24 && depth != 32))
        throw UnsupportedFormatException("variante de BMP inconnue");
    limits.Check(width, height);
    const auto rowBytes = (static_cast<std::size_t>(width) * static_cast<std::size_t>(depth) + 31) / 32 * 4;
    if (rowBytes * static_cast<std::size_t>(height) > data.size())
        throw UnsupportedFormatException("fichier incomplet");

    StillPixels pixels(static_cast<int>(width), static_cast<int>(height));
    for (int line = 0; line < pixels.Height(); ++line) {
        in.Seek(pixelsAt + static_cast<std::size_t>(line) * rowBytes);
        const Bytes row = in.Take(rowBytes);
        const int y = signedHeight < 0 ? line : pixels.Height() - 1 - line;
        for (int x = 0; x < pixels.Width(); ++x) {
            Bytes colour = row;
            if (depth >= 24) {
                colour = row.subspan(static_cast<std::size_t>(x * (depth / 8)), 3);
            } else {
                const int bit = x * depth;
                const int number
                    = row[static_cast<std::size_t>(bit / 8)] >> (8 - depth - bit % 8) & ((1 << depth) - 1);
                in.Seek(kBmpHeader + header + static_cast<std::size_t>(number) * 4);
                colour = in.Take(3);
            }
            pixels.Set(x, y, MakeRgba(colour[2], colour[1], colour[0]));
        }
    }
    return pixels.Finish();
}

} // namespace veltrane::codecs::pict
