#pragma once

#include "imaging/pixels/Bitmap.h"

namespace veltrane::imaging::png {

/// What a part of a picture looks like.
enum class Texture {
    Natural, ///< few equal neighbours, as in photographs
    Shaded, ///< areas of one colour, and soft changes
    Hard, ///< areas of one colour with sharp edges: drawings, text, screens
};

/// By a sample of the rows [from, to).
[[nodiscard]] Texture TextureOf(const Bitmap& picture, int from, int to);

} // namespace veltrane::imaging::png
