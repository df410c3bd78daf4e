#include "imaging/tiff/Jbig.h"

#include <algorithm>
#include <array>

#include "imaging/bits/ByteReader.h"

namespace veltrane::imaging {

namespace {

constexpr std::size_t kHeaderBytes = 20;

std::uint8_t Reversed(std::uint8_t byte)
{
    unsigned result = 0;
    for (unsigned bit = 0; bit < 8; ++bit)
        result |= (static_cast<unsigned>(byte) >> bit & 1u) << (7 - bit);
    return static_cast<std::uint8_t>(result);
}

} // namespace

bool FitsJbig(Bytes strip, bool reversed, std::uint64_t width, std::uint64_t rows, std::uint64_t mostRows)
{
    if (strip.size() < kHeaderBytes)
        return false;
    std::array<std::uint8_t, kHeaderBytes> header {};
    std::ranges::transform(strip.first(kHeaderBytes), header.begin(),
        [&](std::uint8_t byte) { return reversed ? Reversed(byte) : byte; });
    ByteReader in(header, std::endian::big);
    const std::uint8_t firstLayer = in.U8(), lastLayer = in.U8(), planes = in.U8();
    in.Skip(1);
    const std::uint32_t stripWidth = in.U32(), stripRows = in.U32();
    return firstLayer == 0 && lastLayer == 0 && planes == 1 && stripWidth == width && stripRows >= rows
        && stripRows <= mostRows;
}

} // namespace veltrane::imaging
