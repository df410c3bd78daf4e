#pragma once

#include <span>
#include <vector>

#include "platform/codecs/pict/Shape.h"

namespace veltrane::codecs::pict {

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
    [[nodiscard]] std::int64_t RowCost() const noexcept override
    {
        return static_cast<std::int64_t>(corners.size()) + 8;
    }

private:
    std::vector<Point> corners;
    Rect bounds;
};

} // namespace veltrane::codecs::pict
