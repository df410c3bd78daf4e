#pragma once

#include "imaging/pixels/Bitmap.h"
#include "imaging/tiff/File.h"
#include "imaging/tiff/Page.h"

namespace veltrane::imaging {

/// The page as the library's own reader paints it, as stored: for TiffColour::Library.
/// Raises Fault when it cannot, or when the pixels do not fit.
[[nodiscard]] Bitmap ReadByLibrary(TiffFile& file, const TiffPage& page);

} // namespace veltrane::imaging
