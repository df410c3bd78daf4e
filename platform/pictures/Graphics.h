#pragma once

#include <cstdint>

#include "platform/values/Ref.h"

namespace veltrane {

class Picture;

/// A colour: 0x00RRGGBB.
using Colour = std::uint32_t;

/// A drawing surface: of a picture (Picture::Graphics) or of the screen (a Canvas's Paint). The origin is
/// the top left corner; sizes and positions are in pixels of the picture, in widget units on the screen.
class Graphics : public Counted {
public:
    /// In the place of a size: the picture's own.
    static constexpr double kOwnSize = -10000.0;

    [[nodiscard]] virtual std::int64_t Width() const = 0;
    [[nodiscard]] virtual std::int64_t Height() const = 0;

    /// The colour that FillRect uses; black at first.
    [[nodiscard]] Colour ForeColor() const noexcept { return foreColor; }
    void ForeColor(Colour colour) noexcept { foreColor = colour; }

    /// Fills the rectangle with ForeColor. Nothing is drawn when a side is 0 or less.
    virtual void FillRect(double x, double y, double width, double height) = 0;

    /// Draws the source rectangle of `picture` into the destination rectangle, over what is there, scaling
    /// it to fit. kOwnSize in any of the four sizes means the picture's own width or height. Nothing is
    /// drawn when a side is 0. Raises NilObjectException when `picture` is nil.
    virtual void DrawPicture(const Ref<Picture>& picture, double x, double y, double destinationWidth,
        double destinationHeight, double sourceX, double sourceY, double sourceWidth, double sourceHeight)
        = 0;

private:
    Colour foreColor = 0;
};

} // namespace veltrane
