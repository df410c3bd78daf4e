#pragma once

#include <memory>

#include "imaging/colour/Colour.h"

namespace veltrane::imaging {

/// Each ink takes its complement's light away, black all three: red = (1 - cyan)(1 - black). `from` is
/// Cmyk8 or Cmyk16.
[[nodiscard]] std::shared_ptr<const ColourTransform> SubtractiveInks(Samples from);

} // namespace veltrane::imaging
