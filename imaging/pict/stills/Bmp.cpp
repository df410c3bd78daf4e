// BMP without compression. Source: Microsoft, "BITMAPFILEHEADER" and "BITMAPINFOHEADER".

#include <cstdint>

#include "imaging/Fault.h"
#include "imaging/bits/ByteReader.h"
#include "imaging/pict/stills/StillDecoders.h"

namespace veltrane::imaging::pict {

namespace {

constexpr std::size_t kFileHeader = 14;
constexpr std::size_t kLeastHeader = 40;

struct BmpHeader {
    std::size_t pixelsAt = 0;
    std::size_t paletteAt = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool downwards = false; ///< the first row is the uppermost; most begin with the lowest
    int depth = 0;
    std::size_t rowBytes = 0;
};

BmpHeader ReadBmpHeader(Bytes data, const Limits& limits)
{
    ByteReader in(data, std::endian::little);
    in.Seek(10);
    BmpHeader header;
    header.pixelsAt = in.U32();
    const std::size_t size = in.U32();
    header.paletteAt = kFileHeader + size;
    header.width = in.I32();
    const std::int64_t height = in.I32();
    header.downwards = height < 0;
    header.height = header.downwards ? -height : height;
    in.Skip(2); // planes
    header.depth = in.U16();
    const bool packed = in.U32() != 0;
    const int depth = header.depth;
    if (size < kLeastHeader || packed
        || (depth != 1 && depth != 4 && depth != 8 && depth != 24 && depth != 32))
        throw Fault(Fault::BmpVariantUnknown);
    limits.Check(header.width, header.height);
    header.rowBytes
        = (static_cast<std::size_t>(header.width) * static_cast<std::size_t>(depth) + 31) / 32 * 4;
    if (header.rowBytes * static_cast<std::size_t>(header.height) > data.size())
        throw Fault(Fault::Incomplete);
    return header;
}

std::vector<Rgba> ReadBmpPalette(Bytes data, const BmpHeader& header)
{
    std::vector<Rgba> palette(256, kBlack);
    ByteReader in(data, std::endian::little);
    in.Seek(header.paletteAt);
    for (std::size_t i = 0; i < std::size_t { 1 } << header.depth && in.Position() + 4 <= header.pixelsAt;
         ++i) {
        const Bytes bgr = in.Take(4);
        palette[i] = MakeRgba(bgr[2], bgr[1], bgr[0]);
    }
    return palette;
}

Rgba PixelOf(Bytes row, int x, int depth, const std::vector<Rgba>& palette)
{
    if (depth >= 24) {
        const Bytes bgr = row.subspan(static_cast<std::size_t>(x) * static_cast<std::size_t>(depth / 8), 3);
        return MakeRgba(bgr[2], bgr[1], bgr[0]);
    }
    const int bit = x * depth;
    const int number = row[static_cast<std::size_t>(bit / 8)] >> (8 - depth - bit % 8) & ((1 << depth) - 1);
    return palette[static_cast<std::size_t>(number)];
}

} // namespace

bool LooksLikeBmp(Bytes data) noexcept
{
    return data.size() > kFileHeader + kLeastHeader && data[0] == 'B' && data[1] == 'M';
}

Bitmap DecodeBmp(Bytes data, const Limits& limits)
{
    const BmpHeader header = ReadBmpHeader(data, limits);
    const std::vector<Rgba> palette = header.depth <= 8 ? ReadBmpPalette(data, header) : std::vector<Rgba> {};
    StillPixels pixels(static_cast<int>(header.width), static_cast<int>(header.height));
    ByteReader in(data, std::endian::little);
    in.Seek(header.pixelsAt);
    for (int line = 0; line < pixels.Height(); ++line) {
        const Bytes row = in.Take(header.rowBytes);
        const int y = header.downwards ? line : pixels.Height() - 1 - line;
        for (int x = 0; x < pixels.Width(); ++x)
            pixels.Set(x, y, PixelOf(row, x, header.depth, palette));
    }
    return pixels.Finish();
}

} // namespace veltrane::imaging::pict
