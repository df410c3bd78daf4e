// Each component's rows together, packed one by one, behind a list of their lengths; the components follow
// each other: red, green, blue and perhaps one more that is no colour.

#include <vector>

#include "imaging/Fault.h"
#include "imaging/bits/ByteReader.h"
#include "imaging/pict/drawing/PackBits.h"
#include "imaging/pict/stills/StillDecoders.h"

namespace veltrane::imaging::pict {

namespace {

constexpr std::size_t kColours = 3;

} // namespace

void DecodePlanar(const Still& still, StillPixels& pixels)
{
    const auto height = static_cast<std::size_t>(still.height);
    const auto width = static_cast<std::size_t>(still.width);
    if (still.depth != 24 && still.depth != 32)
        throw Fault(Fault::QuickTimeDepthUnknown);
    const std::size_t planes = static_cast<std::size_t>(still.depth) / 8;
    ByteReader lengths(still.data, std::endian::big);
    ByteReader rows = lengths;
    rows.Skip(planes * height * 2);
    std::vector<std::uint8_t> row(width);
    for (std::size_t plane = 0; plane < kColours; ++plane) {
        for (std::size_t y = 0; y < height; ++y) {
            if (UnpackBits(rows.Take(lengths.U16()), 1, row) < width)
                throw Fault(Fault::QuickTimeDamaged);
            auto* const target = reinterpret_cast<std::uint8_t*>(pixels.Row(static_cast<int>(y)));
            for (std::size_t x = 0; x < width; ++x)
                target[4 * x + plane] = row[x];
        }
    }
}

} // namespace veltrane::imaging::pict
