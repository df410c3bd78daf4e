#include "imaging/pict/drawing/Region.h"

#include <algorithm>
#include <iterator>

namespace veltrane::imaging::pict {

namespace {

constexpr int kEnd = 0x7FFF; ///< ends a row's positions, and the rows
constexpr std::size_t kMostTurns = 4'000'000; ///< a halftone over 2000 x 2000 pixels; 16 MB

// Positions of one row, up to the end mark. They have to rise; sorted, they cannot break what follows.
void ReadTurns(ByteReader& in, int offset, std::vector<int>& turns)
{
    turns.clear();
    for (int x = in.I16(); x != kEnd; x = in.I16())
        turns.push_back(x + offset);
    std::sort(turns.begin(), turns.end());
}

} // namespace

Region Region::Read(ByteReader& in, Point offset, Budget& budget)
{
    const std::size_t size = in.U16();
    if (size < 10)
        throw Fault(Fault::PictRegionDamaged);
    ByteReader data = in.Nested(size - 2);
    Region region(Offset(ReadRect(data), offset));
    if (data.Remaining() > 0)
        region.ReadBands(data, offset, budget);
    return region;
}

void Region::ReadBands(ByteReader& in, Point offset, Budget& budget)
{
    std::vector<int> fresh;
    std::vector<int> before;
    std::vector<int> now;
    for (int y = in.I16(); y != kEnd; y = in.I16()) {
        if (!bands.empty() && y + offset.y <= bands.back().top)
            throw Fault(Fault::PictRegionDamaged);
        ReadTurns(in, offset.x, fresh);
        Exclusive(before, fresh, now);
        if (turns.size() + now.size() > kMostTurns)
            throw Fault(Fault::PictRegionOutOfProportion);
        budget.Charge(static_cast<std::int64_t>(now.size() + fresh.size()));
        bands.push_back({ y + offset.y, turns.size(), now.size() });
        turns.insert(turns.end(), now.begin(), now.end());
        before.swap(now);
    }
    if (bands.empty())
        bounds = {};
}

void Region::Row(int y, Spans& row) const
{
    row.clear();
    if (bounds.Empty() || y < bounds.top || y >= bounds.bottom)
        return;
    if (bands.empty()) {
        row.insert(row.end(), { bounds.left, bounds.right });
        return;
    }
    const auto next = std::upper_bound(
        bands.begin(), bands.end(), y, [](int wanted, const Band& band) { return wanted < band.top; });
    if (next == bands.begin())
        return;
    const Band& band = *std::prev(next);
    const auto first = turns.begin() + static_cast<std::ptrdiff_t>(band.first);
    row.assign(first, first + static_cast<std::ptrdiff_t>(band.count));
    Clamp(row, bounds.left, bounds.right);
}

ShrunkRegion::ShrunkRegion(const Region& region, int width, int height) noexcept
    : region(region), width(width), height(height)
{
}

void ShrunkRegion::Row(int y, Spans& row) const
{
    row.clear();
    const Rect bounds = region.Bounds();
    if (y - height < bounds.top || y + height >= bounds.bottom)
        return;
    Spans other;
    Spans both;
    region.Row(y - height, row);
    for (int near = y - height + 1; near <= y + height && !row.empty(); ++near) {
        region.Row(near, other);
        Intersect(row, other, both);
        row.swap(both);
    }
    for (std::size_t i = 0; i + 1 < row.size(); i += 2) {
        row[i] += width;
        row[i + 1] -= width;
    }
    Clamp(row, bounds.left, bounds.right);
}

} // namespace veltrane::imaging::pict
