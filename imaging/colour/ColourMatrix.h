#pragma once

#include <array>
#include <memory>
#include <vector>

#include "imaging/colour/Colour.h"

namespace veltrane::imaging {

/// A colour space of three primaries: each sample goes through its channel's curve to linear light, the
/// three together through a matrix to the linear light of sRGB.
struct MatrixColour {
    /// Linear light for every sample value, 0 to 1: 256 numbers for Rgba8, 65536 for Rgba16.
    using Curve = std::vector<float>;

    std::array<Curve, 3> curves;
    std::array<std::array<float, 3>, 3> matrix {}; ///< one row for each of red, green and blue
};

/// `from` is Rgba8 or Rgba16, and the curves have its length.
[[nodiscard]] std::shared_ptr<const ColourTransform> MatrixTransform(MatrixColour colour, Samples from);

} // namespace veltrane::imaging
