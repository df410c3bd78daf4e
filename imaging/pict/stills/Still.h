#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "imaging/Limits.h"
#include "imaging/bits/Bytes.h"
#include "imaging/pict/drawing/Rgba.h"
#include "imaging/pixels/Bitmap.h"

namespace veltrane::imaging::pict {

/// A compressed picture within a picture. Source: Inside Macintosh: QuickTime, chapter 3,
/// "ImageDescription".
struct Still {
    std::uint32_t type = 0; ///< the compressor's four characters, the first highest
    std::string compressor; ///< its name as shown to people, in Mac Roman; may be empty
    int width = 0;
    int height = 0;
    int depth = 0; ///< bits a pixel; 32 more when it is grey
    std::vector<Rgba> palette; ///< 256 colours when the depth is 8 or less
    Bytes data;
};

/// Reads a Still: its description, and the data behind it.
[[nodiscard]] Still ReadStill(ByteReader& in);

/// The still's pixels. Formats that are files of their own go to their codec.
[[nodiscard]] Bitmap DecodeStill(const Still& still, const Limits& limits);

} // namespace veltrane::imaging::pict
