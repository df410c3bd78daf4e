#pragma once

#include "platform/codecs/Codec.h"

namespace veltrane::codecs::png {

/// What kPng's decode does.
[[nodiscard]] Bitmap Decode(Bytes file, const Limits& limits);

} // namespace veltrane::codecs::png
