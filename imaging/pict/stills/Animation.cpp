// Rows of runs: so many units skipped, then units repeated or copied. A unit is a pixel, or the four bytes
// that hold several where pixels are of eight bits and less.

#include <algorithm>

#include "imaging/Fault.h"
#include "imaging/bits/ByteReader.h"
#include "imaging/pict/stills/StillDecoders.h"

namespace veltrane::imaging::pict {

namespace {

class Unit {
public:
    explicit Unit(const Still& still)
        : palette(still.palette)
        , depth(still.depth > 32 ? still.depth - 32 : still.depth)
        , bytes(depth <= 8 ? 4 : static_cast<std::size_t>(depth) / 8)
    {
        if (depth != 2 && depth != 4 && depth != 8 && depth != 16 && depth != 24 && depth != 32)
            throw Fault(Fault::QuickTimeDepthUnknown);
    }
    [[nodiscard]] Bytes Read(ByteReader& in) const { return in.Take(bytes); }
    [[nodiscard]] int Pixels() const noexcept { return depth <= 8 ? 32 / depth : 1; }

    void Put(Bytes unit, int x, int y, StillPixels& pixels) const
    {
        if (depth == 16)
            pixels.Set(x, y, FromFiveBits(static_cast<std::uint16_t>(unit[0] << 8 | unit[1])));
        else if (depth == 24)
            pixels.Set(x, y, MakeRgba(unit[0], unit[1], unit[2]));
        else if (depth == 32)
            pixels.Set(x, y, MakeRgba(unit[1], unit[2], unit[3]));
        else
            PutNumbers(unit, x, y, pixels);
    }

private:
    void PutNumbers(Bytes unit, int x, int y, StillPixels& pixels) const
    {
        for (int i = 0; i < Pixels(); ++i) {
            const int bit = i * depth;
            const int number = unit[static_cast<std::size_t>(bit / 8)] >> (8 - depth - bit % 8);
            pixels.Set(x + i, y, palette[static_cast<std::size_t>(number & ((1 << depth) - 1))]);
        }
    }

    const std::vector<Rgba>& palette;
    int depth;
    std::size_t bytes;
};

// One row. False when the frame ends instead of it.
bool DecodeRow(ByteReader& in, const Unit& unit, int y, StillPixels& pixels)
{
    int skipped = in.U8();
    if (skipped == 0)
        return false;
    int x = (skipped - 1) * unit.Pixels();
    for (int code = in.I8(); code != -1; code = in.I8()) {
        if (code == 0) {
            skipped = in.U8();
            x += (skipped - 1) * unit.Pixels();
            continue;
        }
        const int count = code < 0 ? -code : code;
        Bytes data = unit.Read(in);
        for (int i = 0; i < count; ++i, x += unit.Pixels()) {
            if (i > 0 && code > 0)
                data = unit.Read(in);
            if (x >= 0)
                unit.Put(data, x, y, pixels);
        }
    }
    return true;
}

} // namespace

void DecodeAnimation(const Still& still, StillPixels& pixels)
{
    const Unit unit(still);
    ByteReader in(still.data, std::endian::big);
    in.Skip(4); // length
    constexpr int kSomeRows = 8; ///< only so many rows from a first one have changed
    const bool partial = (in.U16() & kSomeRows) != 0;
    int y = 0;
    int end = pixels.Height();
    if (partial) {
        y = in.U16();
        in.Skip(2);
        end = std::min(end, y + in.U16());
        in.Skip(2);
    }
    while (y < end && DecodeRow(in, unit, y, pixels))
        ++y;
}

} // namespace veltrane::imaging::pict
