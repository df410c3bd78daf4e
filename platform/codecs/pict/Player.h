#pragma once

#include "platform/codecs/Bitmap.h"
#include "platform/codecs/Limits.h"
#include "platform/codecs/pict/Header.h"

namespace veltrane::codecs::pict {

/// Draws the whole picture. Raises Fault when an opcode's data is cut off or damaged
/// or the work is out of all proportion; a missing end mark and what follows it are passed over.
[[nodiscard]] Bitmap Play(Bytes file, const Header& header, const Limits& limits);

} // namespace veltrane::codecs::pict
