#pragma once

#include <cstdint>

#include "imaging/tiff/Page.h"

namespace veltrane::imaging {

/// The opaque RGBA pixel of one CIE L*a*b* colour, stored as `colour` says; colours outside sRGB are cut to
/// its range. The white of L*a*b* is D50, as the programs that write such files mean it, and becomes the
/// white of the screen. T is std::uint8_t or std::uint16_t.
/// Source: TIFF 6.0, section 23; Adobe Photoshop TIFF Technical Notes (ICC Lab); RFC 3949, section 5.2.3.
template<class T>
void PaintLab(TiffColour colour, const T* lab, std::uint8_t* rgba);

extern template void PaintLab(TiffColour, const std::uint8_t*, std::uint8_t*);
extern template void PaintLab(TiffColour, const std::uint16_t*, std::uint8_t*);

} // namespace veltrane::imaging
