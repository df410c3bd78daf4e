#pragma once

#include "imaging/pict/drawing/Shape.h"

namespace veltrane::imaging::pict {

class RectShape final : public Shape {
public:
    explicit RectShape(const Rect& rect) noexcept : rect(rect) { }
    [[nodiscard]] Rect Bounds() const noexcept override { return rect; }
    void Row(int y, Spans& row) const override;

private:
    Rect rect;
};

/// A rectangle whose corners are quarters of an oval; an oval as wide and high as the rectangle makes it
/// an oval. A pixel belongs to it when its centre does.
class RoundRectShape final : public Shape {
public:
    RoundRectShape(const Rect& rect, int ovalWidth, int ovalHeight) noexcept;
    [[nodiscard]] static RoundRectShape Oval(const Rect& rect) noexcept
    {
        return { rect, rect.Width(), rect.Height() };
    }
    [[nodiscard]] Rect Bounds() const noexcept override { return rect; }
    void Row(int y, Spans& row) const override;
    [[nodiscard]] std::int64_t RowCost() const noexcept override { return 50; }

private:
    Rect rect;
    double radiusX;
    double radiusY;
};

/// The part of the plane between two rays from a rectangle's centre. Angles in degrees, 0 at the top,
/// clockwise, measured in the rectangle's own proportions: 45 degrees always points at a corner.
/// Source: Imaging With QuickDraw, chapter 3, "PaintArc".
class WedgeShape final : public Shape {
public:
    WedgeShape(const Rect& rect, int startAngle, int arcAngle) noexcept;
    [[nodiscard]] Rect Bounds() const noexcept override { return rect; }
    void Row(int y, Spans& row) const override;
    [[nodiscard]] std::int64_t RowCost() const noexcept override { return 150; }

private:
    [[nodiscard]] bool Holds(double angle) const noexcept;
    void AddCrossing(double angle, double dy, Spans& row) const;

    Rect rect;
    double start;
    double sweep;
};

/// What lies in both shapes, or in the first without the second, which must lie within it. Both must
/// outlive this.
class CombinedShape final : public Shape {
public:
    enum class How { Both, Without };
    CombinedShape(const Shape& a, How how, const Shape& b) noexcept : a(a), b(b), how(how) { }
    [[nodiscard]] Rect Bounds() const noexcept override { return a.Bounds(); }
    void Row(int y, Spans& row) const override;
    [[nodiscard]] std::int64_t RowCost() const noexcept override { return a.RowCost() + b.RowCost() + 100; }

private:
    const Shape& a;
    const Shape& b;
    How how;
};

} // namespace veltrane::imaging::pict
