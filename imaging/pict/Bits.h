#pragma once

#include "imaging/pict/Port.h"
#include "imaging/pict/drawing/Canvas.h"

namespace veltrane::imaging::pict {

/// Reads and draws what one of the six bitmap opcodes holds; `in` stands behind it and is left behind its
/// data. A bitmap whose place on the canvas is `taken` is stepped over: it stands in for a still that went
/// there. Source: Imaging With QuickDraw, appendix A, table A-2, opcodes 0x0090 to 0x009B.
void DrawBits(
    int opcode, ByteReader& in, const Port& port, Canvas& canvas, Budget& budget, const Rect& taken = {});

} // namespace veltrane::imaging::pict
