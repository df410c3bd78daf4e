#pragma once

#include "platform/codecs/Codec.h"

namespace veltrane::codecs::jpeg {

/// Codec::decode.
[[nodiscard]] Bitmap Decode(Bytes file, const Limits& limits);

} // namespace veltrane::codecs::jpeg
