#include "imaging/pict/drawing/Shapes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veltrane::imaging::pict {

void RectShape::Row(int y, Spans& row) const
{
    row.clear();
    if (!rect.Empty() && y >= rect.top && y < rect.bottom)
        row.insert(row.end(), { rect.left, rect.right });
}

RoundRectShape::RoundRectShape(const Rect& rect, int ovalWidth, int ovalHeight) noexcept
    : rect(rect)
    , radiusX(std::clamp(ovalWidth, 0, std::max(rect.Width(), 0)) / 2.0)
    , radiusY(std::clamp(ovalHeight, 0, std::max(rect.Height(), 0)) / 2.0)
{
}

void RoundRectShape::Row(int y, Spans& row) const
{
    row.clear();
    if (rect.Empty() || y < rect.top || y >= rect.bottom)
        return;
    // How far the row's middle reaches into the upper or the lower corners.
    const double middle = y + 0.5;
    const double depth = std::max({ rect.top + radiusY - middle, middle - (rect.bottom - radiusY), 0.0 })
        / std::max(radiusY, 0.5);
    const double indent = radiusX - radiusX * std::sqrt(std::max(1.0 - depth * depth, 0.0));
    const int left = static_cast<int>(std::ceil(rect.left + indent - 0.5));
    const int right = static_cast<int>(std::floor(rect.right - indent - 0.5)) + 1;
    if (left < right)
        row.insert(row.end(), { left, right });
}

WedgeShape::WedgeShape(const Rect& rect, int startAngle, int arcAngle) noexcept
    : rect(rect)
    , start(arcAngle < 0 ? startAngle + arcAngle : startAngle)
    , sweep(std::min(std::abs(arcAngle), 360))
{
}

bool WedgeShape::Holds(double angle) const noexcept
{
    const double behind = std::fmod(angle - start, 360.0);
    return (behind < 0 ? behind + 360.0 : behind) < sweep;
}

void WedgeShape::AddCrossing(double angle, double dy, Spans& row) const
{
    const double radians = angle * std::numbers::pi / 180.0;
    const double down = -std::cos(radians);
    if (std::abs(down) < 1e-9 || dy / down <= 0)
        return; // the ray runs beside the row, or away from it
    const double x = (rect.left + rect.right) / 2.0 + rect.Width() / 2.0 * std::sin(radians) * dy / down;
    const double nearest = std::ceil(x - 0.5);
    row.push_back(static_cast<int>(std::clamp<double>(nearest, rect.left, rect.right)));
}

void WedgeShape::Row(int y, Spans& row) const
{
    row.clear();
    if (rect.Empty() || y < rect.top || y >= rect.bottom || sweep <= 0)
        return;
    if (sweep >= 360) {
        row.insert(row.end(), { rect.left, rect.right });
        return;
    }
    const double dy = (y + 0.5 - (rect.top + rect.bottom) / 2.0) / (rect.Height() / 2.0);
    AddCrossing(start, dy, row);
    AddCrossing(start + sweep, dy, row);
    // Far to the left the row comes close to nine o'clock: from above when it lies in the upper half.
    if (Holds(dy < 0 ? 270.0001 : 269.9999))
        row.push_back(rect.left);
    if (row.size() % 2 != 0)
        row.push_back(rect.right);
    std::sort(row.begin(), row.end());
}

void CombinedShape::Row(int y, Spans& row) const
{
    Spans first;
    Spans second;
    a.Row(y, first);
    b.Row(y, second);
    if (how == How::Both)
        Intersect(first, second, row);
    else
        Exclusive(first, second, row);
}

} // namespace veltrane::imaging::pict
