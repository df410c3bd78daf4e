#pragma once

#include <map>
#include <memory>
#include <string>
#include <tuple>

#include "imaging/pict/Port.h"
#include "imaging/pict/drawing/Canvas.h"
#include "imaging/pict/text/Typeface.h"

namespace veltrane::imaging::pict {

/// Draws text in fonts that stand in for the Macintosh's own, which no other machine has. What is right is
/// the place, the size, the style and, on average, the width; the letters' shapes are another font's.
class TextPainter {
public:
    /// Draws what the opcodes from 0x28 to 0x2B hold. Without any font on the machine, nothing.
    void Draw(int opcode, ByteReader& data, Port& port, Canvas& canvas, Budget& budget);

private:
    struct Line;

    [[nodiscard]] std::shared_ptr<Typeface> Face(const TextStyle& style, char32_t needed, Budget& budget);
    [[nodiscard]] bool Lay(Line& line, Bytes text, const TextStyle& style, Budget& budget);

    std::map<std::tuple<std::string, bool, bool, char32_t>, std::shared_ptr<Typeface>> faces;
};

} // namespace veltrane::imaging::pict
