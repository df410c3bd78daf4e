#pragma once

#include "platform/codecs/Bitmap.h"
#include "platform/codecs/Sink.h"

namespace veltrane::codecs::png {

/// What kPng's encode does. PNG has no quality to choose.
void Encode(const Bitmap& picture, int quality, Sink& sink);

} // namespace veltrane::codecs::png
