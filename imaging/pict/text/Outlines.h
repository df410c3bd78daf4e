#pragma once

#include <span>
#include <vector>

#include "imaging/pict/drawing/Shape.h"

namespace veltrane::imaging::pict {

/// What a pen of `penWidth` x `penHeight` pixels covers on its way from `from` to `to`; it hangs below and
/// to the right of its point. Source: Imaging With QuickDraw, chapter 3, "Line".
class LineShape final : public Shape {
public:
    LineShape(Point from, Point to, int penWidth, int penHeight) noexcept;
    [[nodiscard]] Rect Bounds() const noexcept override;
    void Row(int y, Spans& row) const override;

private:
    struct Reach {
        int first;
        int last;
    };
    [[nodiscard]] Reach At(int y) const noexcept;

    Point top; ///< the upper end
    Point low; ///< the lower end
    int penWidth;
    int penHeight;
};

/// The inside of a closed run of points, by the even-odd rule. A pixel belongs to it when its centre does.
class PolygonShape final : public Shape {
public:
    explicit PolygonShape(std::span<const Point> points);
    [[nodiscard]] Rect Bounds() const noexcept override { return bounds; }
    void Row(int y, Spans& row) const override;
    [[nodiscard]] std::int64_t RowCost() const noexcept override { return rowCost; }

private:
    using Band = std::vector<std::size_t>; ///< the edges that rows of one height can meet, by first corner

    [[nodiscard]] Point Next(std::size_t corner) const noexcept
    {
        return corners[corner + 1 == corners.size() ? 0 : corner + 1];
    }
    [[nodiscard]] std::size_t BandOf(int y) const noexcept
    {
        return static_cast<std::size_t>((y - bounds.top) / bandHeight);
    }
    void SortIntoBands();

    std::vector<Point> corners;
    Rect bounds;
    std::vector<Band> bands; ///< so that a coast line of thousands of corners does not cost them all a row
    int bandHeight = 1;
    std::int64_t rowCost = 8;
};

} // namespace veltrane::imaging::pict
