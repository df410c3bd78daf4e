#pragma once

#include "platform/codecs/Codec.h"

namespace veltrane::codecs::jpeg {

/// Codec::readInfo and Codec::decode.
[[nodiscard]] Info ReadInfo(Bytes file, const Limits& limits);
[[nodiscard]] Bitmap Decode(Bytes file, const Limits& limits);

} // namespace veltrane::codecs::jpeg
