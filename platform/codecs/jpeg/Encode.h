#pragma once

#include "platform/codecs/Codec.h"

namespace veltrane::codecs::jpeg {

/// Codec::encode. The encoder's choice of quality is 75.
void Encode(const Bitmap& picture, int quality, Sink& sink);

} // namespace veltrane::codecs::jpeg
