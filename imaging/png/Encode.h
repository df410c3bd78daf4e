#pragma once

#include "imaging/bits/Sink.h"
#include "imaging/pixels/Bitmap.h"

namespace veltrane::imaging::png {

/// What kPng's encode does. PNG has no quality to choose.
void Encode(const Bitmap& picture, int quality, Sink& sink);

} // namespace veltrane::imaging::png
