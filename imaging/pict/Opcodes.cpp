#include "imaging/pict/Opcodes.h"

#include <algorithm>
#include <array>

namespace veltrane::imaging::pict {

namespace {

enum class Measure {
    Fixed, ///< so many bytes
    Word, ///< a word that counts the bytes behind it
    Long, ///< a long that counts the bytes behind it
    SelfWord, ///< a word that counts itself too: regions and polygons
    Text, ///< so many bytes, a count of one byte, and the text
    Comment, ///< a kind of two bytes, then as Word
    Pairs, ///< twice the opcode's upper byte
    Contents, ///< told by the contents alone
};

struct Range {
    int last; ///< the range ends here; it begins behind the one before
    Measure measure;
    std::size_t size = 0; ///< of Fixed and Text
};

using enum Measure;

constexpr std::array kRanges = std::to_array<Range>({
    { 0x0000, Fixed, 0 }, // NOP
    { 0x0001, SelfWord }, // Clip
    { 0x0002, Fixed, 8 }, // BkPat
    { 0x0003, Fixed, 2 }, // TxFont
    { 0x0004, Fixed, 1 }, // TxFace
    { 0x0005, Fixed, 2 }, // TxMode
    { 0x0007, Fixed, 4 }, // SpExtra, PnSize
    { 0x0008, Fixed, 2 }, // PnMode
    { 0x000A, Fixed, 8 }, // PnPat, FillPat
    { 0x000C, Fixed, 4 }, // OvSize, Origin
    { 0x000D, Fixed, 2 }, // TxSize
    { 0x000F, Fixed, 4 }, // FgColor, BkColor
    { 0x0010, Fixed, 8 }, // TxRatio
    { 0x0011, Fixed, 1 }, // VersionOp
    { 0x0014, Contents }, // BkPixPat, PnPixPat, FillPixPat
    { 0x0016, Fixed, 2 }, // PnLocHFrac, ChExtra
    { 0x0019, Fixed, 0 }, { 0x001B, Fixed, 6 }, // RGBFgCol, RGBBkCol
    { 0x001C, Fixed, 0 }, // HiliteMode
    { 0x001D, Fixed, 6 }, // HiliteColor
    { 0x001E, Fixed, 0 }, // DefHilite
    { 0x001F, Fixed, 6 }, // OpColor
    { 0x0020, Fixed, 8 }, // Line
    { 0x0021, Fixed, 4 }, // LineFrom
    { 0x0022, Fixed, 6 }, // ShortLine
    { 0x0023, Fixed, 2 }, // ShortLineFrom
    { 0x0027, Word }, { 0x0028, Text, 4 }, // LongText
    { 0x002A, Text, 1 }, // DHText, DVText
    { 0x002B, Text, 2 }, // DHDVText
    { 0x002F, Word }, // FontName, LineJustify, GlyphState
    { 0x0037, Fixed, 8 }, // rectangles
    { 0x003F, Fixed, 0 }, { 0x0047, Fixed, 8 }, // round rectangles
    { 0x004F, Fixed, 0 }, { 0x0057, Fixed, 8 }, // ovals
    { 0x005F, Fixed, 0 }, { 0x0067, Fixed, 12 }, // arcs
    { 0x006F, Fixed, 4 }, { 0x0077, SelfWord }, // polygons
    { 0x007F, Fixed, 0 }, { 0x0087, SelfWord }, // regions
    { 0x008F, Fixed, 0 }, { 0x0091, Contents }, // BitsRect, BitsRgn
    { 0x0097, Word }, { 0x009B, Contents }, // PackBitsRect, PackBitsRgn, DirectBitsRect, DirectBitsRgn
    { 0x009F, Word }, { 0x00A0, Fixed, 2 }, // ShortComment
    { 0x00A1, Comment }, // LongComment
    { 0x00AF, Word }, { 0x00CF, Fixed, 0 }, { 0x00FE, Long }, { 0x00FF, Fixed, 0 }, // OpEndPic
    { 0x7FFF, Pairs }, // HeaderOp among them: 24 bytes
    { 0x80FF, Fixed, 0 }, { 0xFFFF, Long }, // CompressedQuickTime and UncompressedQuickTime among them
});

const Range& RangeOf(int opcode) noexcept
{
    std::size_t i = 0;
    while (kRanges[i].last < opcode)
        ++i;
    return kRanges[i];
}

} // namespace

std::optional<std::size_t> DataLength(int opcode, ByteReader in)
{
    const Range& range = RangeOf(opcode);
    switch (range.measure) {
    case Fixed: return range.size;
    case Word: return std::size_t { 2 } + in.U16();
    case Long: return std::size_t { 4 } + in.U32();
    case SelfWord: return std::max<std::size_t>(in.U16(), 2);
    case Text: in.Skip(range.size); return range.size + 1 + in.U8();
    case Comment: in.Skip(2); return std::size_t { 4 } + in.U16();
    case Pairs: return static_cast<std::size_t>(opcode >> 8) * 2;
    case Contents: break;
    }
    return std::nullopt;
}

} // namespace veltrane::imaging::pict
