#include "imaging/pict/Bits.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "imaging/Fault.h"
#include "imaging/pict/Opcodes.h"
#include "imaging/pict/drawing/PixelRows.h"
#include "imaging/pict/drawing/Stretch.h"

namespace veltrane::imaging::pict {

namespace {

// What comes before the pixels.
struct Placement {
    PixelMap map;
    Rect source;
    Rect target; ///< on the canvas
    int mode = 0;
    std::optional<Region> mask; ///< on the canvas
};

Placement ReadPlacement(int opcode, ByteReader& in, Point offset, Budget& budget)
{
    const bool direct = opcode == kDirectBitsRect || opcode == kDirectBitsRgn;
    const bool masked = opcode == kBitsRgn || opcode == kPackBitsRgn || opcode == kDirectBitsRgn;
    if (direct)
        in.Skip(4); // a base address that means nothing in a file
    Placement place { ReadPixelMap(in, direct ? MapKind::Pixels : MapKind::Either), {}, {}, 0, {} };
    if (place.map.blackAndWhite)
        place.map.palette = BlackAndWhitePalette();
    else if (!direct)
        place.map.palette = ReadColourTable(in);
    else if (place.map.pixelSize <= 8)
        throw Fault(Fault::PictDirectPixelsIndexed);
    place.source = ReadRect(in);
    place.target = Offset(ReadRect(in), offset);
    place.mode = in.U16();
    if (masked)
        place.mask = Region::Read(in, offset, budget);
    return place;
}

// Copies are averaged when they shrink, as the dithering copy does it on a screen; the modes that combine
// bits take single pixels, since a mixture of two would combine to neither.
Shrinking ShrinkingFor(int mode) noexcept
{
    constexpr int kDither = 64;
    return (mode & ~kDither) == 0 ? Shrinking::Average : Shrinking::Nearest;
}

// Feeds the pixels to `stretch`, row by row; rows that nothing needs are stepped over.
void Pour(const PixelMap& map, Packing packing, ByteReader& in, Budget& budget, Stretch& stretch)
{
    PixelRows rows(map, packing, in, budget);
    std::vector<Rgba> pixels(static_cast<std::size_t>(map.bounds.Width()));
    for (int y = map.bounds.top; y < map.bounds.bottom; ++y) {
        if (!stretch.Needs(y)) {
            rows.Skip();
            continue;
        }
        rows.Next(pixels);
        stretch.Take(y, pixels);
    }
}

} // namespace

void DrawBits(int opcode, ByteReader& in, const Port& port, Canvas& canvas, Budget& budget, const Rect& taken)
{
    const Placement place = ReadPlacement(opcode, in, port.offset, budget);
    const bool drawn = !place.source.Empty() && !place.target.Empty() && place.target != taken;
    const Rect wanted = drawn ? Intersect(place.target, canvas.Visible()) : Rect {};
    const Rect target = drawn ? place.target : Rect { 0, 0, 1, 1 };
    const Region* const mask = place.mask ? &*place.mask : nullptr;
    Transfer transfer = port.With(place.mode);
    transfer.twoColours = place.map.blackAndWhite;
    budget.Charge(place.map.bounds.Width() + 8 * std::max(wanted.Width(), 0) + std::max(wanted.Height(), 0));
    Stretch stretch(place.map.bounds, place.source, target, wanted, ShrinkingFor(place.mode),
        [&](int x, int y, std::span<const Rgba> row) { canvas.Put(x, y, row, mask, transfer); });
    Pour(place.map, opcode >= kPackBitsRect ? Packing::Packed : Packing::Raw, in, budget, stretch);
}

} // namespace veltrane::imaging::pict
