#pragma once

#include <algorithm>
#include <cstdint>

#include "imaging/bits/ByteReader.h"

namespace veltrane::imaging::pict {

/// A place between pixels: the pixel (x, y) lies below and to the right of it.
struct Point {
    int x = 0;
    int y = 0;
};

/// The pixels from (left, top) up to but without (right, bottom).
struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    [[nodiscard]] int Width() const noexcept { return right - left; }
    [[nodiscard]] int Height() const noexcept { return bottom - top; }
    [[nodiscard]] bool Empty() const noexcept { return right <= left || bottom <= top; }
    friend bool operator==(const Rect&, const Rect&) = default;
};

/// What both hold; empty (perhaps with a negative side) when they do not touch.
[[nodiscard]] inline Rect Intersect(const Rect& a, const Rect& b) noexcept
{
    return { std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
        std::min(a.bottom, b.bottom) };
}

[[nodiscard]] inline Rect Inset(const Rect& r, int dx, int dy) noexcept
{
    return { r.left + dx, r.top + dy, r.right - dx, r.bottom - dy };
}

[[nodiscard]] inline Rect Offset(const Rect& r, Point by) noexcept
{
    return { r.left + by.x, r.top + by.y, r.right + by.x, r.bottom + by.y };
}

[[nodiscard]] inline Point Offset(Point p, Point by) noexcept
{
    return { p.x + by.x, p.y + by.y };
}

/// A Point as stored: vertical first.
[[nodiscard]] inline Point ReadPoint(ByteReader& in)
{
    const int y = in.I16();
    return { in.I16(), y };
}

/// A Rect as stored: top, left, bottom, right.
[[nodiscard]] inline Rect ReadRect(ByteReader& in)
{
    const Point topLeft = ReadPoint(in);
    const Point bottomRight = ReadPoint(in);
    return { topLeft.x, topLeft.y, bottomRight.x, bottomRight.y };
}

} // namespace veltrane::imaging::pict
