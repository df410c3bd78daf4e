#pragma once

#include <memory>
#include <optional>

#include "imaging/colour/Colour.h"

namespace veltrane::imaging {

/// The transform that an ICC profile describes, also where it changes nothing; null when the profile is
/// broken or not of the kind that `from` needs. Source: ICC.1:2010 (profile version 4.3) and ICC.1:2001-04.
[[nodiscard]] std::shared_ptr<const ColourTransform> ReadProfile(Bytes icc, Samples from);

/// The transform of samples whose linear light is sample^exponent over these primaries; null when the
/// primaries span no colours. `from` is Rgba8 or Rgba16.
[[nodiscard]] std::shared_ptr<const ColourTransform> PowerOverPrimaries(
    double exponent, const Primaries& primaries, Samples from);

} // namespace veltrane::imaging
