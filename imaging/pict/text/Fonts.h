#pragma once

#include <string>
#include <string_view>

#include "imaging/pict/Port.h"

namespace veltrane::imaging::pict {

/// What to look for in place of a Macintosh font.
struct Substitute {
    std::string_view family;
    double letterWidth; ///< mean width of the original's letters a to z, in ems; 0 when it is not known
    bool bold = false; ///< the original is bold by nature
    bool symbols = false; ///< its bytes are Greek letters and signs
};

/// The substitute for the style's font, by the name that the picture gave it or, failing that, by number.
/// Valid as long as the style.
/// Source of the numbers: Inside Macintosh: Text, chapter 4, "Font Family IDs".
[[nodiscard]] Substitute SubstituteFor(const TextStyle& style);

} // namespace veltrane::imaging::pict
