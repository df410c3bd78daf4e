#pragma once

#include "imaging/Codec.h"

namespace veltrane::imaging {

/// GIF, versions 87a and 89a: the first frame on its logical screen. What the frame does not cover is
/// transparent, what lies outside the screen is cut off; a screen without size takes the frame's.
/// Passed over: stray bytes between blocks, plain-text blocks, everything behind the frame's last pixel.
/// Source: CompuServe, "Graphics Interchange Format, version 89a", 1990.
extern const Codec kGif;

} // namespace veltrane::imaging
