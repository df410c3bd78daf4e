#pragma once

#include "imaging/Codec.h"

namespace veltrane::imaging::png {

/// What kPng's decode does.
[[nodiscard]] Bitmap Decode(Bytes file, const Limits& limits);

} // namespace veltrane::imaging::png
