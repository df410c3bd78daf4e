#pragma once

#include "platform/codecs/Codec.h"

namespace veltrane::codecs::png {

/// What kPng's readInfo and decode do.
[[nodiscard]] Info ReadInfo(Bytes file, const Limits& limits);
[[nodiscard]] Bitmap Decode(Bytes file, const Limits& limits);

} // namespace veltrane::codecs::png
