#pragma once

#include <memory>
#include <string>
#include <vector>

#include "imaging/pict/drawing/Geometry.h"

namespace veltrane::imaging::pict {

/// Pixels of a row that a glyph covers alike, from `left` up to `right`, by `coverage` parts of 255.
struct GlyphSpan {
    int y;
    int left;
    int right;
    int coverage;
};

/// An outline font of this machine. FreeType draws it and Fontconfig finds it: both are there wherever a
/// window can show text, since the toolkit itself stands on them, and a font of our own would be neither
/// as legible nor as complete.
class Typeface {
public:
    ~Typeface();

    /// The font that stands in best for `family`, which need not be installed, and that has the character
    /// `needed` unless it is 0. Null when the machine has no outline font at all.
    [[nodiscard]] static std::shared_ptr<Typeface> Find(
        const std::string& family, bool bold, bool italic, char32_t needed);

    [[nodiscard]] bool Has(char32_t character) const noexcept;

    /// How far the character moves the pen, and the mean of that over the letters a to z, in ems.
    [[nodiscard]] double Advance(char32_t character) const noexcept;
    [[nodiscard]] double MeanLetterWidth() const noexcept { return meanLetterWidth; }

    /// How far letters reach above and below the base line, in ems.
    [[nodiscard]] double Ascent() const noexcept;
    [[nodiscard]] double Descent() const noexcept;

    /// The glyph's pixels within `visible`, drawn at (x, y) on the base line with an em of `width` x
    /// `height` pixels. Empty when the font has no such glyph.
    [[nodiscard]] std::vector<GlyphSpan> Draw(
        char32_t character, double x, int y, double width, double height, const Rect& visible) const;

private:
    struct Face;
    explicit Typeface(std::unique_ptr<Face> face) noexcept;

    std::unique_ptr<Face> face;
    double meanLetterWidth = 0;
};

} // namespace veltrane::imaging::pict
