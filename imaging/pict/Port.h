#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>

#include "imaging/pict/drawing/Geometry.h"
#include "imaging/pict/drawing/Pattern.h"
#include "imaging/pict/drawing/Transfer.h"

namespace veltrane::imaging::pict {

/// What text looks like, and where the last piece of it began.
struct TextStyle {
    int font = 0;
    std::map<int, std::string> names; ///< of the fonts whose numbers the picture has named
    int face = 0; ///< bits: 1 bold, 2 italic, 4 underline, 8 outline, 16 shadow, 32 condense, 64 extend
    int size = 0; ///< points, which are pixels here; 0 the system's 12
    int mode = 1;
    double spaceExtra = 0; ///< pixels added to each space
    double letterExtra = 0; ///< pixels added to each character
    double scaleX = 1;
    double scaleY = 1;
    Point at; ///< on the base line, in the picture's own coordinates
};

/// What drawing depends on: a graphics port's settings as OpenPicture finds them.
/// Source: Imaging With QuickDraw, chapter 2 "OpenPort" and chapter 4 "OpenCPort".
struct Port {
    Point offset; ///< takes the picture's coordinates to the canvas's

    Point penSize { 1, 1 };
    int penMode = 8;
    Point penAt;
    Pattern penPattern = Pattern::Black();
    Pattern fillPattern = Pattern::Black();
    Pattern backPattern = Pattern::White();

    Rgba fore = kBlack;
    Rgba back = kWhite;
    Rgba opColour = kBlack;
    Rgba hilite = kDefaultHilite;
    bool hiliting = false; ///< the next inversion marks with the highlight colour instead

    Point ovalSize;
    Rect lastRect; ///< what the opcodes that repeat a rectangle mean, whichever shape it was given for
    TextStyle text;

    static constexpr Rgba kDefaultHilite = MakeRgba(0xCC, 0xCC, 0xFF);

    /// How a bitmap or text is put down in the given mode.
    [[nodiscard]] Transfer With(int mode) const noexcept
    {
        return { mode, fore, back, opColour, hilite, false };
    }

    /// How a pattern is. One with colours of its own does not take the port's.
    [[nodiscard]] Transfer With(int mode, const Pattern& pattern) const noexcept
    {
        constexpr int kFirstArithmetic = 32;
        Transfer transfer = With(mode);
        transfer.twoColours = !pattern.HasOwnColours();
        if (pattern.HasOwnColours() && mode < kFirstArithmetic) {
            transfer.fore = kBlack;
            transfer.back = kWhite;
        }
        return transfer;
    }
};

} // namespace veltrane::imaging::pict
