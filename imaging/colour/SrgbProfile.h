#pragma once

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging {

/// ICC profiles, version 4, that say sRGB in less than 500 bytes: for pictures of three components, and of
/// the grey axis alone. Source: ICC.1:2010; IEC 61966-2-1:1999 for the colours.
[[nodiscard]] Bytes SrgbProfile() noexcept;
[[nodiscard]] Bytes SrgbGreyProfile() noexcept;

} // namespace veltrane::imaging
