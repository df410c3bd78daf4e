#pragma once

#include "imaging/pict/Port.h"
#include "imaging/pict/drawing/Canvas.h"

namespace veltrane::imaging::pict {

/// Draws what the opcodes from 0x20 to 0x23 hold: a line, from the pen or from a place of its own.
void DrawLine(int opcode, ByteReader& data, Port& port, Canvas& canvas);

/// Draws what the opcodes from 0x30 to 0x8F hold: rectangles, round rectangles, ovals, arcs, polygons and
/// regions, which are framed, painted, erased, inverted or filled.
void DrawShape(int opcode, ByteReader& data, Port& port, Canvas& canvas, Budget& budget);

} // namespace veltrane::imaging::pict
