#pragma once

#include "imaging/Codec.h"

namespace veltrane::imaging::jpeg {

/// Codec::decode.
[[nodiscard]] Bitmap Decode(Bytes file, const Limits& limits);

} // namespace veltrane::imaging::jpeg
