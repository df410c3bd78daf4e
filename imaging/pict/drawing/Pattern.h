#pragma once

#include <span>
#include <vector>

#include "imaging/bits/Bytes.h"
#include "imaging/pict/Budget.h"
#include "imaging/pict/drawing/Rgba.h"

namespace veltrane::imaging::pict {

/// A tile that repeats over the whole plane. Either 8 x 8 bits that stand for the foreground and the
/// background colour of the moment, or pixels of their own colours.
/// Source: Imaging With QuickDraw, chapter 3, "Pattern", and chapter 4, "PixPat".
class Pattern {
public:
    /// Eight rows of eight bits, the leftmost bit highest; 1 is black.
    [[nodiscard]] static Pattern FromBits(Bytes eight);

    [[nodiscard]] static Pattern Black() { return Pattern(1, 1, { kBlack }, false); }
    [[nodiscard]] static Pattern White() { return Pattern(1, 1, { kWhite }, false); }

    /// Reads what a pixel-pattern opcode holds: type, old pattern and either an RGB colour or pixels.
    [[nodiscard]] static Pattern Read(ByteReader& in, Budget& budget);

    [[nodiscard]] bool HasOwnColours() const noexcept { return coloured; }

    /// True, and the colour, when the tile is one colour all over.
    [[nodiscard]] bool Uniform(Rgba& colour) const noexcept;

    /// The `out.size()` pixels from (x, y) to the right; the tile's corner lies at (0, 0).
    void Row(int x, int y, std::span<Rgba> out) const noexcept;

private:
    Pattern(int width, int height, std::vector<Rgba> pixels, bool coloured);

    int width;
    int height;
    std::vector<Rgba> pixels;
    bool coloured;
    bool uniform;
};

} // namespace veltrane::imaging::pict
