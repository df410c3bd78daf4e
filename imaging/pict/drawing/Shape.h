#pragma once

#include "imaging/pict/drawing/Geometry.h"
#include "imaging/pict/drawing/Spans.h"

namespace veltrane::imaging::pict {

/// A set of pixels, asked row by row.
class Shape {
public:
    virtual ~Shape() = default;

    /// Nothing of the shape lies outside.
    [[nodiscard]] virtual Rect Bounds() const noexcept = 0;

    /// Puts the row `y` into `row`, which is emptied first. Rows may be asked in any order.
    virtual void Row(int y, Spans& row) const = 0;

    /// What one row costs to find, in the budget's units.
    [[nodiscard]] virtual std::int64_t RowCost() const noexcept { return 8; }
};

} // namespace veltrane::imaging::pict
