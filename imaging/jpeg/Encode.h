#pragma once

#include "imaging/Codec.h"

namespace veltrane::imaging::jpeg {

/// Codec::encode. The encoder's choice of quality is 75.
void Encode(const Bitmap& picture, int quality, Sink& sink);

} // namespace veltrane::imaging::jpeg
