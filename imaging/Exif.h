#pragma once

#include "imaging/bits/Bytes.h"
#include "imaging/pixels/Orientation.h"

namespace veltrane::imaging {

/// The orientation that an EXIF block tells in its first directory. `tiff` begins with the byte-order mark
/// ("II" or "MM"); what a container puts before it is the caller's to take off. TopLeft when the block is
/// damaged or silent. Source: Exif 2.32, section 4.6.
[[nodiscard]] Orientation ExifOrientation(Bytes tiff) noexcept;

} // namespace veltrane::imaging
