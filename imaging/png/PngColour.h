#pragma once

#include <memory>

#include "imaging/colour/Colour.h"
#include "imaging/png/Chunks.h"

namespace veltrane::imaging::png {

/// The way from the file's colours to sRGB, for pixels and for plain grey samples.
struct Transforms {
    std::shared_ptr<const ColourTransform> pixels; ///< Rgba8 or Rgba16; null: nothing to do
    std::shared_ptr<const ColourTransform> grey; ///< Grey8; null: ask `pixels`
};

/// What the chunks say of colour, the strongest word first: cICP, iCCP, sRGB, gAMA with cHRM. A word that
/// is not understood (a broken profile, a curve for high dynamic range) leaves it to the next.
/// `pixels`: the samples in which the caller will hand in pixels, Rgba8 or Rgba16.
/// Source: PNG 3rd ed., 4.3 and 13.14.
[[nodiscard]] Transforms ColoursOf(const Chunks& chunks, Samples pixels);

} // namespace veltrane::imaging::png
