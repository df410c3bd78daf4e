#pragma once

#include "imaging/pict/Port.h"
#include "imaging/pict/drawing/Canvas.h"

namespace veltrane::imaging::pict {

/// Takes over what an opcode sets: clipping, pens, patterns, colours, text. Passes over opcodes that set
/// nothing. `data` holds the opcode's data; for pixel patterns, whatever follows, and is left behind it.
void Set(int opcode, ByteReader& data, Port& port, Canvas& canvas, Budget& budget);

} // namespace veltrane::imaging::pict
