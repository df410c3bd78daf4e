#pragma once

#include <cstddef>
#include <vector>

#include "imaging/pict/Budget.h"
#include "imaging/pict/drawing/Shape.h"

namespace veltrane::imaging::pict {

/// A Region as stored: a size, a bounding box and, unless it is a rectangle, for each row in which
/// something changes the x positions at which inside and outside swap.
/// Source: Imaging With QuickDraw, chapter 2, "Region".
class Region final : public Shape {
public:
    Region() noexcept = default; ///< no pixel
    explicit Region(const Rect& rect) noexcept : bounds(rect) { }

    /// Reads the region at `in`, its size word first, and moves it by `offset`.
    /// Raises Fault when it is cut off or its rows are too many to hold.
    [[nodiscard]] static Region Read(ByteReader& in, Point offset, Budget& budget);

    [[nodiscard]] bool Rectangular() const noexcept { return bands.empty(); }
    [[nodiscard]] Rect Bounds() const noexcept override { return bounds; }
    void Row(int y, Spans& row) const override;
    [[nodiscard]] std::int64_t RowCost() const noexcept override
    {
        return 8 + static_cast<std::int64_t>(turns.size() / std::max<std::size_t>(bands.size(), 1));
    }

private:
    struct Band { ///< rows that are alike, from `top` to the next band
        int top;
        std::size_t first; ///< into `turns`
        std::size_t count;
    };
    void ReadBands(ByteReader& in, Point offset, Budget& budget);

    Rect bounds;
    std::vector<Band> bands;
    std::vector<int> turns;
};

/// A region less its border of `width` x `height` pixels: what a pen of that size leaves when it frames
/// the region from within.
class ShrunkRegion final : public Shape {
public:
    ShrunkRegion(const Region& region, int width, int height) noexcept;
    [[nodiscard]] Rect Bounds() const noexcept override { return Inset(region.Bounds(), width, height); }
    void Row(int y, Spans& row) const override;
    [[nodiscard]] std::int64_t RowCost() const noexcept override
    {
        return region.RowCost() * (2 * height + 1);
    }

private:
    const Region& region;
    int width;
    int height;
};

} // namespace veltrane::imaging::pict
