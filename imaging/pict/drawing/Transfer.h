#pragma once

#include <cstddef>

#include "imaging/pict/drawing/Rgba.h"

namespace veltrane::imaging::pict {

/// How new pixels meet those that are there.
///
/// `mode` is QuickDraw's number: 0 to 7 the Boolean source modes, 8 to 15 the same for patterns, 32 to 39
/// the arithmetic ones, 49 grayishTextOr, 50 hilite, 64 added for dithering (which 8 bits a component do
/// not need). Numbers that mean nothing copy. Source: Imaging With QuickDraw, chapter 4, "Boolean Transfer
/// Modes With Color Pixels" and "Arithmetic Transfer Modes".
struct Transfer {
    int mode = 0;
    Rgba fore = kBlack; ///< takes the place of black in the Boolean modes
    Rgba back = kWhite; ///< takes the place of white, and is the transparent colour
    Rgba weight = kBlack; ///< OpColor: the blend's weights, the pins' limits
    Rgba hilite = kWhite;
    bool twoColours = false; ///< the source is black and white and stands for fore and back in every mode
};

/// Puts `count` pixels of `source` over those of `target`.
void Apply(const Transfer& transfer, Rgba* target, const Rgba* source, std::size_t count);

/// The pixel that a copy of `source` leaves whatever was there; false when the mode looks at what is there.
[[nodiscard]] bool Replaces(const Transfer& transfer, Rgba source, Rgba& result) noexcept;

} // namespace veltrane::imaging::pict
