#pragma once

#include "imaging/Limits.h"
#include "imaging/pict/Header.h"
#include "imaging/pixels/Bitmap.h"

namespace veltrane::imaging::pict {

/// Draws the whole picture. Raises Fault when an opcode's data is cut off or damaged
/// or the work is out of all proportion; a missing end mark and what follows it are passed over.
[[nodiscard]] Bitmap Play(Bytes file, const Header& header, const Limits& limits);

} // namespace veltrane::imaging::pict
