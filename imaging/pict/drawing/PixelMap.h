#pragma once

#include <vector>

#include "imaging/pict/drawing/Geometry.h"
#include "imaging/pict/drawing/Rgba.h"

namespace veltrane::imaging::pict {

/// What is known of a bitmap before its pixels come.
/// Source: Imaging With QuickDraw, chapter 3, "BitMap", and chapter 4, "PixelMap".
struct PixelMap {
    int rowBytes = 0;
    Rect bounds; ///< of the pixels, in a coordinate system of their own
    bool blackAndWhite = true; ///< a BitMap: one bit a pixel, 1 is black
    int packType = 0;
    int pixelSize = 1; ///< bits a pixel: 1, 2, 4, 8, 16 or 32
    int components = 1; ///< of a direct pixel, 3 or 4
    std::vector<Rgba> palette; ///< 256 colours when the pixels are numbers
};

enum class MapKind {
    Either, ///< the upper bit of the row bytes tells a PixMap from a BitMap
    Pixels, ///< a PixMap, whatever that bit says
};

/// Reads a BitMap or a PixMap without its base address.
/// Raises Fault for depths that do not exist and rows too short for their pixels.
[[nodiscard]] PixelMap ReadPixelMap(ByteReader& in, MapKind kind);

/// Reads a ColorTable: always 256 colours, black where the file names none.
[[nodiscard]] std::vector<Rgba> ReadColourTable(ByteReader& in);

/// The palette of a BitMap.
[[nodiscard]] std::vector<Rgba> BlackAndWhitePalette();

} // namespace veltrane::imaging::pict
