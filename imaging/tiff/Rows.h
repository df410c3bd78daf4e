#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "imaging/tiff/File.h"
#include "imaging/tiff/Page.h"

namespace veltrane::imaging {

/// A piece of one row, decoded: samples as Unpack takes them, each plane beginning at a whole byte.
struct TiffRow {
    int x = 0; ///< of its first pixel
    int y = 0;
    int pixels = 0;
    std::span<const std::uint8_t* const> planes; ///< one when samples lie together, else as WantedSamples
};

/// The samples of a pixel that are looked at: its colours, then alpha when there is one.
[[nodiscard]] std::vector<std::uint16_t> WantedSamples(const TiffPage& page);

/// The bytes that ReadRows and the library need beside the pixels. Raises Fault when
/// the page's strips or tiles cannot be: larger than the file has data for, or absurdly larger than the
/// page.
[[nodiscard]] std::int64_t WorkingBytes(const TiffFile& file, const TiffPage& page);

/// Decodes the page strip by strip or tile by tile, and hands out every piece of every row once. The
/// buffers are a strip or a tile of each plane; rows stored plain are handed out where they lie in the
/// file. Raises Fault when one cannot be decoded whole.
void ReadRows(TiffFile& file, const TiffPage& page, const std::function<void(const TiffRow&)>& take);

} // namespace veltrane::imaging
