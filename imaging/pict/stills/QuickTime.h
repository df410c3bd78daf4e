#pragma once

#include "imaging/Limits.h"
#include "imaging/pict/Port.h"
#include "imaging/pict/drawing/Canvas.h"

namespace veltrane::imaging::pict {

/// Draws the compressed still that opcode 0x8200 holds, or the matted bitmap of 0x8201. `data` is all of
/// the opcode's data. Raises Fault, naming the compressor when it is one that we do
/// not read. Gives where on the canvas the still of 0x8200 went; empty for 0x8201. Source: Inside Macintosh:
/// QuickTime, chapter 3, "Working With Pictures".
Rect DrawQuickTime(
    int opcode, ByteReader& data, const Port& port, Canvas& canvas, Budget& budget, const Limits& limits);

} // namespace veltrane::imaging::pict
