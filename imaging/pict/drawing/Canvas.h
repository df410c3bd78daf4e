#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "imaging/pict/Budget.h"
#include "imaging/pict/drawing/Pattern.h"
#include "imaging/pict/drawing/Region.h"
#include "imaging/pict/drawing/Shape.h"
#include "imaging/pict/drawing/Transfer.h"
#include "imaging/pixels/Bitmap.h"

namespace veltrane::imaging::pict {

/// The picture being drawn, white paper at first, and the region outside of which nothing is drawn. Its
/// coordinates begin with (0, 0) at the picture's top left pixel.
class Canvas {
public:
    /// Raises Fault::NoMemory when the machine has not the room.
    Canvas(int width, int height, Budget& budget);

    /// The pixels that drawing can reach at the moment.
    [[nodiscard]] Rect Visible() const noexcept { return visible; }

    void Clip(Region region);

    /// Fills the shape's pixels with the pattern.
    void Fill(const Shape& shape, const Pattern& pattern, const Transfer& transfer);

    /// Puts pixels into row `y`, the first at `x`; only where `mask` has pixels, unless it is null.
    void Put(int x, int y, std::span<const Rgba> pixels, const Shape* mask, const Transfer& transfer);

    /// Puts the transfer's black into row `y` from `left` up to `right`, so that `coverage` of 255 parts
    /// of each pixel are new.
    void Tint(int y, int left, int right, int coverage, const Transfer& transfer);

    /// The finished picture; the canvas is of no use afterwards.
    [[nodiscard]] Bitmap Finish();

private:
    [[nodiscard]] Rgba* At(int x, int y) noexcept;
    void Whiten(int y) noexcept;
    const Spans& Clipped(int y, const Spans& wanted);
    void FillSpan(int y, int left, int right, const Pattern& pattern, const Transfer& transfer);

    Bitmap bitmap;
    std::uint8_t* rows;
    std::vector<std::uint8_t> paper; ///< 1 for each row that is white already, or drawn on
    Budget& budget;
    Region clip;
    Rect visible;
    Spans clipRow;
    Spans shown;
    std::vector<Rgba> scratch;
};

} // namespace veltrane::imaging::pict
