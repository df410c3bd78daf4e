#pragma once

namespace veltrane::imaging {

struct Codec;

/// Macintosh pictures of versions 1 and 2: recordings of QuickDraw calls, drawings and bitmaps alike.
/// Read only, by a reader of our own. Source: Inside Macintosh, Imaging With QuickDraw (1994).
extern const Codec kPict;

} // namespace veltrane::imaging
