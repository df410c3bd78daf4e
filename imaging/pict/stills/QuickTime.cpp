#include "imaging/pict/stills/QuickTime.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <vector>

#include "imaging/Fault.h"
#include "imaging/pict/Bits.h"
#include "imaging/pict/Opcodes.h"
#include "imaging/pict/drawing/Stretch.h"
#include "imaging/pict/stills/Still.h"

namespace veltrane::imaging::pict {

namespace {

/// x' = a x + tx, y' = d y + ty, in fixed point with 16 bits behind the point.
struct Mapping {
    double a = 1;
    double d = 1;
    double tx = 0;
    double ty = 0;

    [[nodiscard]] Rect operator()(const Rect& r) const noexcept
    {
        const auto at = [](double scale, int from, double move) {
            // Beyond 32 bits there is no canvas; the ends keep the conversion defined.
            return static_cast<int>(std::lround(std::clamp(scale * from + move, -1e6, 1e6)));
        };
        return { at(a, r.left, tx), at(d, r.top, ty), at(a, r.right, tx), at(d, r.bottom, ty) };
    }
};

// A matrix of three columns and three rows; the last column is 0, 0, 1 in all that is not a perspective.
Mapping ReadMapping(ByteReader& in)
{
    const auto fixed = [&in] { return in.I32() / 65536.0; };
    Mapping map;
    map.a = fixed();
    const double b = fixed();
    in.Skip(4);
    const double c = fixed();
    map.d = fixed();
    in.Skip(4);
    map.tx = fixed();
    map.ty = fixed();
    in.Skip(4);
    if (b != 0 || c != 0 || map.a <= 0 || map.d <= 0)
        throw Fault(Fault::QuickTimeMatrixNotSupported);
    return map;
}

// A matte says how much of each pixel is seen. Nobody is known to have stored one in a picture; stepping
// over it shows the whole image.
void SkipMatte(ByteReader& in)
{
    const std::size_t size = in.U32();
    in.Skip(8); // the rectangle it covers
    in.Skip(size);
}

// The rows of a still on white: a picture's paper, and what shows through where the still is transparent.
void FlattenRow(const Bitmap& bitmap, int y, std::vector<Rgba>& row)
{
    bitmap.CopyRow(y, reinterpret_cast<std::uint8_t*>(row.data()));
    if (bitmap.Opaque())
        return;
    for (Rgba& pixel : row) {
        const auto c = Components(pixel);
        const auto over = [alpha = int { c[3] }](int value) {
            return static_cast<std::uint8_t>((value * alpha + 255 * (255 - alpha) + 127) / 255);
        };
        pixel = MakeRgba(over(c[0]), over(c[1]), over(c[2]));
    }
}

struct Placement {
    Rect source;
    Rect target; ///< on the canvas
    Transfer transfer;
    std::optional<Region> mask; ///< on the canvas
};

void Place(const Bitmap& bitmap, const Placement& place, Canvas& canvas)
{
    const Rect whole { 0, 0, bitmap.Width(), bitmap.Height() };
    const Region* const mask = place.mask ? &*place.mask : nullptr;
    Stretch stretch(whole, place.source, place.target, Intersect(place.target, canvas.Visible()),
        Shrinking::Average,
        [&](int x, int y, std::span<const Rgba> row) { canvas.Put(x, y, row, mask, place.transfer); });
    std::vector<Rgba> row(static_cast<std::size_t>(whole.right));
    for (int y = 0; y < whole.bottom; ++y) {
        if (!stretch.Needs(y))
            continue;
        FlattenRow(bitmap, y, row);
        stretch.Take(y, row);
    }
}

// A few bytes can be a still of gigapixels, and many of them can stand one behind the other.
Bitmap DecodeWithin(Budget& budget, const Still& still, const Limits& limits)
{
    constexpr std::int64_t kDecodingCost = 4; // for each pixel, which takes as many bytes
    Limits affordable = limits;
    affordable.maxBytes = std::min(limits.maxBytes, budget.Left());
    try {
        Bitmap bitmap = DecodeStill(still, affordable);
        budget.Charge(kDecodingCost * bitmap.Width() * bitmap.Height());
        return bitmap;
    } catch (const Fault& fault) {
        // The machine may well have the room: it is the file that is out of all proportion.
        if (fault.kind == Fault::Kind::NoMemory && affordable.maxBytes < limits.maxBytes)
            throw Fault(Fault::PictDrawingOutOfProportion);
        throw;
    }
}

Rect DrawCompressed(ByteReader& data, const Mapping& map, const Port& port, Canvas& canvas, Budget& budget,
    const Limits& limits)
{
    SkipMatte(data);
    Placement place;
    place.transfer = port.With(data.U16());
    place.source = ReadRect(data);
    data.Skip(4); // accuracy
    if (const std::size_t maskSize = data.U32(); maskSize > 0) {
        ByteReader mask = data.Nested(maskSize);
        place.mask = Region::Read(mask, port.offset, budget);
    }
    const Still still = ReadStill(data);
    budget.Charge(static_cast<std::int64_t>(still.data.size()));
    const Bitmap bitmap = DecodeWithin(budget, still, limits);
    if (place.source.Empty())
        place.source = { 0, 0, bitmap.Width(), bitmap.Height() };
    place.target = Offset(map(place.source), port.offset);
    if (!place.target.Empty())
        Place(bitmap, place, canvas);
    return place.target;
}

} // namespace

Rect DrawQuickTime(
    int opcode, ByteReader& data, const Port& port, Canvas& canvas, Budget& budget, const Limits& limits)
{
    data.Skip(4 + 2); // length, version
    const Mapping map = ReadMapping(data);
    if (opcode == kCompressedQuickTime) {
        return DrawCompressed(data, map, port, canvas, budget, limits);
    }
    SkipMatte(data);
    const int bits = data.U16(); // an opcode of its own follows, with its own places
    if (!IsBits(bits))
        throw Fault(Fault::QuickTimeDamaged);
    DrawBits(bits, data, port, canvas, budget);
    return {};
}

} // namespace veltrane::imaging::pict
