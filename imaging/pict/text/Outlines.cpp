#include "imaging/pict/text/Outlines.h"

#include <algorithm>
#include <cmath>

namespace veltrane::imaging::pict {

LineShape::LineShape(Point from, Point to, int penWidth, int penHeight) noexcept
    : top(from.y <= to.y ? from : to)
    , low(from.y <= to.y ? to : from)
    , penWidth(penWidth)
    , penHeight(penHeight)
{
}

Rect LineShape::Bounds() const noexcept
{
    return { std::min(top.x, low.x), top.y, std::max(top.x, low.x) + penWidth, low.y + penHeight };
}

// The pixels of a one-pixel line in its row `y`: one where the line is steep, a run where it is flat.
LineShape::Reach LineShape::At(int y) const noexcept
{
    const int dx = low.x - top.x;
    const int dy = low.y - top.y;
    if (dy == 0)
        return { std::min(top.x, low.x), std::max(top.x, low.x) };
    const double slope = static_cast<double>(dx) / dy;
    const double middle = top.x + (y - top.y) * slope;
    if (std::abs(dx) <= dy) {
        const int x = static_cast<int>(std::floor(middle + 0.5));
        return { x, x };
    }
    const double half = std::abs(slope) / 2;
    const double first = std::ceil(middle - half);
    const double last = std::ceil(middle + half) - 1;
    return { std::max(static_cast<int>(first), std::min(top.x, low.x)),
        std::min(static_cast<int>(last), std::max(top.x, low.x)) };
}

void LineShape::Row(int y, Spans& row) const
{
    row.clear();
    if (penWidth <= 0 || penHeight <= 0 || y < top.y || y >= low.y + penHeight)
        return;
    // The pen's rows that touch this one come from a run of the line's rows. The line leans one way only,
    // so the ends of the run are its extremes.
    const Reach a = At(std::max(y - penHeight + 1, top.y));
    const Reach b = At(std::min(y, low.y));
    const int left = std::min(a.first, b.first);
    const int right = std::max(a.last, b.last) + penWidth;
    if (left < right)
        row.insert(row.end(), { left, right });
}

PolygonShape::PolygonShape(std::span<const Point> points) : corners(points.begin(), points.end())
{
    if (corners.empty())
        return;
    const auto [left, right] = std::ranges::minmax(corners, {}, &Point::x);
    const auto [top, bottom] = std::ranges::minmax(corners, {}, &Point::y);
    bounds = { left.x, top.y, right.x, bottom.y };
    if (!bounds.Empty())
        SortIntoBands();
}

void PolygonShape::SortIntoBands()
{
    constexpr int kBands = 64;
    bandHeight = (bounds.Height() + kBands - 1) / kBands;
    bands.resize(BandOf(bounds.bottom - 1) + 1);
    std::size_t entries = 0;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const auto [high, low] = std::minmax({ corners[i].y, Next(i).y });
        if (high == low)
            continue;
        for (std::size_t band = BandOf(high); band <= BandOf(low - 1); ++band, ++entries)
            bands[band].push_back(i);
    }
    constexpr std::int64_t kEdgeCost = 16; // each is looked at, and half of them sorted
    rowCost += static_cast<std::int64_t>(entries / bands.size()) * kEdgeCost;
}

void PolygonShape::Row(int y, Spans& row) const
{
    row.clear();
    if (bounds.Empty() || y < bounds.top || y >= bounds.bottom)
        return;
    for (const std::size_t i : bands[BandOf(y)]) {
        const Point a = corners[i];
        const Point b = Next(i);
        if ((a.y <= y) == (b.y <= y))
            continue;
        const double x = a.x + (y + 0.5 - a.y) * (b.x - a.x) / static_cast<double>(b.y - a.y);
        row.push_back(static_cast<int>(std::ceil(x - 0.5)));
    }
    std::sort(row.begin(), row.end());
}

} // namespace veltrane::imaging::pict
