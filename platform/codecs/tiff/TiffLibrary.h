#pragma once

#include "platform/codecs/Bitmap.h"
#include "platform/codecs/tiff/TiffFile.h"
#include "platform/codecs/tiff/TiffPage.h"

namespace veltrane::codecs {

/// The page as the library's own reader paints it, as stored: for TiffColour::Library.
/// Raises Fault when it cannot, or when the pixels do not fit.
[[nodiscard]] Bitmap ReadByLibrary(TiffFile& file, const TiffPage& page);

} // namespace veltrane::codecs
