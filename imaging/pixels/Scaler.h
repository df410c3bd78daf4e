#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/pixels/Bitmap.h"

namespace veltrane::imaging {

/// A part of a picture, in its pixels; edges may lie inside a pixel.
struct SourceArea {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

/// Pixels to be written: premultiplied RGBA in byte order, the first row at `rows`, rows `stride` bytes
/// apart. Of an opaque source every alpha becomes 255.
struct ScaledPixels {
    std::uint8_t* rows = nullptr;
    int width = 0;
    int height = 0;
    std::size_t stride = 0;
};

/// Scales the area to fill the target: each pixel of it becomes the average of the source area that it
/// covers, pixels at the edges counted by the share that lies inside, colours weighted by their alpha.
/// `area` lies inside the picture and is not empty; the target has sides of 1 or more.
/// Raises std::bad_alloc.
void ScaleByArea(const Bitmap& source, const SourceArea& area, const ScaledPixels& target);

} // namespace veltrane::imaging
