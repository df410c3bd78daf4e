#pragma once

#include "imaging/Codec.h"

namespace veltrane::imaging {

/// PNG, in all colour types and depths, interlaced or not; of an animation the default picture.
///
/// Source: Portable Network Graphics (PNG) Specification (Third Edition), W3C 2025; zlib and deflate: RFC
/// 1950 and 1951. Writes the smallest exact form among RGB, grey and palette, with and without alpha, at 8
/// bits or fewer, and no metadata but the sRGB chunk; the colours of transparent pixels are kept.
extern const Codec kPng;

} // namespace veltrane::imaging
