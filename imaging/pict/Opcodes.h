#pragma once

#include <cstdint>
#include <optional>

#include "imaging/bits/ByteReader.h"

namespace veltrane::imaging::pict {

/// The codes that are told apart one by one; what lies between them follows patterns of its own.
/// Source: Imaging With QuickDraw, appendix A, tables.
enum Opcode : int {
    kNop = 0x00,
    kClip = 0x01,
    kBkPat = 0x02,
    kTxFont = 0x03,
    kTxFace = 0x04,
    kTxMode = 0x05,
    kSpExtra = 0x06,
    kPnSize = 0x07,
    kPnMode = 0x08,
    kPnPat = 0x09,
    kFillPat = 0x0A,
    kOvSize = 0x0B,
    kOrigin = 0x0C,
    kTxSize = 0x0D,
    kFgColor = 0x0E,
    kBkColor = 0x0F,
    kTxRatio = 0x10,
    kVersion = 0x11,
    kBkPixPat = 0x12,
    kPnPixPat = 0x13,
    kFillPixPat = 0x14,
    kPnLocHFrac = 0x15,
    kChExtra = 0x16,
    kRgbFgCol = 0x1A,
    kRgbBkCol = 0x1B,
    kHiliteMode = 0x1C,
    kHiliteColor = 0x1D,
    kDefHilite = 0x1E,
    kOpColor = 0x1F,
    kLine = 0x20,
    kLineFrom = 0x21,
    kShortLine = 0x22,
    kShortLineFrom = 0x23,
    kLongText = 0x28,
    kDhText = 0x29,
    kDvText = 0x2A,
    kDhDvText = 0x2B,
    kFontName = 0x2C,
    kLineJustify = 0x2D,
    kRects = 0x30, ///< here up to kPolys: shape in the upper, verb in the lower digit
    kRoundRects = 0x40,
    kOvals = 0x50,
    kArcs = 0x60,
    kPolys = 0x70,
    kRegions = 0x80,
    kBitsRect = 0x90,
    kBitsRgn = 0x91,
    kPackBitsRect = 0x98,
    kPackBitsRgn = 0x99,
    kDirectBitsRect = 0x9A,
    kDirectBitsRgn = 0x9B,
    kEndPic = 0xFF,
    kHeader = 0x0C00,
    kCompressedQuickTime = 0x8200,
    kUncompressedQuickTime = 0x8201,
};

/// The six opcodes that hold bitmaps, among reserved ones.
[[nodiscard]] constexpr bool IsBits(int opcode) noexcept
{
    return opcode == kBitsRect || opcode == kBitsRgn || (opcode >= kPackBitsRect && opcode <= kDirectBitsRgn);
}

/// How many bytes of data follow the opcode at `in`, which stands behind it and does not move. Reserved
/// codes have a length too. None for the codes whose length only their contents tell: pixel patterns and
/// bitmaps. Raises Fault when the length itself is cut off.
[[nodiscard]] std::optional<std::size_t> DataLength(int opcode, ByteReader in);

} // namespace veltrane::imaging::pict
