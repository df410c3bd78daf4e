#pragma once

#include "imaging/pixels/Scaler.h"

namespace veltrane::imaging::scaler {

/// Whether a target pixel covers so little of the area that ScaleByTaps is the faster way.
[[nodiscard]] bool IsSmallStep(const SourceArea& area, const ScaledPixels& target) noexcept;

/// As ScaleByArea, and for the same arguments, where IsSmallStep. Throws std::bad_alloc.
void ScaleByTaps(const Bitmap& source, const SourceArea& area, const ScaledPixels& target);

} // namespace veltrane::imaging::scaler
