#include "imaging/pict/Settings.h"

#include <algorithm>
#include <array>
#include <string>

#include "imaging/pict/Opcodes.h"

namespace veltrane::imaging::pict {

namespace {

constexpr double kFixed = 65536.0; ///< 1 in a number of 16 bits before and 16 behind the point

// The eight colours of the first QuickDraw, as Color QuickDraw shows them: inks of a colour ribbon rather
// than a screen's pure primaries. Numbers: chapter 3, "ForeColor"; values: chapter 4, the table of the
// colours that RGBForeColor falls back on.
struct OldColour {
    std::uint32_t number;
    Rgba colour;
};
constexpr std::array kOldColours = std::to_array<OldColour>({
    { 33, kBlack }, { 30, kWhite }, { 205, MakeRgba(0xDD, 0x08, 0x06) }, // red
    { 341, MakeRgba(0x00, 0x80, 0x11) }, // green
    { 409, MakeRgba(0x00, 0x00, 0xD4) }, // blue
    { 273, MakeRgba(0x02, 0xAB, 0xEA) }, // cyan
    { 137, MakeRgba(0xF2, 0x08, 0x84) }, // magenta
    { 69, MakeRgba(0xFC, 0xF3, 0x05) }, // yellow
});

Rgba FromOldColour(std::uint32_t number, Rgba otherwise) noexcept
{
    const auto found = std::ranges::find(kOldColours, number, &OldColour::number);
    return found == kOldColours.end() ? otherwise : found->colour;
}

void SetRatio(ByteReader& data, TextStyle& text)
{
    const Point over = ReadPoint(data);
    const Point under = ReadPoint(data);
    const auto ratio = [](int a, int b) { return a > 0 && b > 0 ? static_cast<double>(a) / b : 1.0; };
    text.scaleX = ratio(over.x, under.x);
    text.scaleY = ratio(over.y, under.y);
}

// Length, old number, and the name as a string that counts itself.
void SetFontName(ByteReader& data, TextStyle& text)
{
    data.Skip(2);
    text.font = data.I16();
    const std::size_t length = data.U8();
    const Bytes name = data.Take(std::min(length, data.Remaining()));
    constexpr std::size_t kMostNames = 256; // a page has a handful
    if (text.names.size() < kMostNames)
        text.names.insert_or_assign(text.font, std::string(name.begin(), name.end()));
}

// Length, and what justified text adds to each character; the line's total is told for printers.
void SetJustification(ByteReader& data, TextStyle& text)
{
    data.Skip(2);
    text.letterExtra = data.I32() / kFixed;
}

void SetText(int opcode, ByteReader& data, TextStyle& text)
{
    switch (opcode) {
    case kTxFont: text.font = data.I16(); break;
    case kTxFace: text.face = data.U8(); break;
    case kTxMode: text.mode = data.I16(); break;
    case kTxSize: text.size = data.I16(); break;
    case kSpExtra: text.spaceExtra = data.I32() / kFixed; break;
    case kChExtra:
        text.letterExtra = data.I16() / 4096.0 * (text.size > 0 ? text.size : 12);
        break; // told for a point
    case kTxRatio: SetRatio(data, text); break;
    case kFontName: SetFontName(data, text); break;
    case kLineJustify: SetJustification(data, text); break;
    default: break;
    }
}

void SetColour(int opcode, ByteReader& data, Port& port)
{
    switch (opcode) {
    case kFgColor: port.fore = FromOldColour(data.U32(), port.fore); break;
    case kBkColor: port.back = FromOldColour(data.U32(), port.back); break;
    case kRgbFgCol: port.fore = ReadRgbColor(data); break;
    case kRgbBkCol: port.back = ReadRgbColor(data); break;
    case kOpColor: port.opColour = ReadRgbColor(data); break;
    case kHiliteColor: port.hilite = ReadRgbColor(data); break;
    case kDefHilite: port.hilite = Port::kDefaultHilite; break;
    case kHiliteMode: port.hiliting = true; break;
    default: break;
    }
}

void SetPattern(int opcode, ByteReader& data, Port& port, Budget& budget)
{
    switch (opcode) {
    case kBkPat: port.backPattern = Pattern::FromBits(data.Take(8)); break;
    case kPnPat: port.penPattern = Pattern::FromBits(data.Take(8)); break;
    case kFillPat: port.fillPattern = Pattern::FromBits(data.Take(8)); break;
    case kBkPixPat: port.backPattern = Pattern::Read(data, budget); break;
    case kPnPixPat: port.penPattern = Pattern::Read(data, budget); break;
    case kFillPixPat: port.fillPattern = Pattern::Read(data, budget); break;
    default: break;
    }
}

Point NotNegative(Point size) noexcept
{
    return { std::max(size.x, 0), std::max(size.y, 0) };
}

void MoveOrigin(ByteReader& data, Port& port)
{
    const int across = data.I16();
    const int down = data.I16();
    // A flood of moves stays within what coordinates of 32 bits can bear.
    constexpr int kFarthest = 1 << 20;
    port.offset.x = std::clamp(port.offset.x - across, -kFarthest, kFarthest);
    port.offset.y = std::clamp(port.offset.y - down, -kFarthest, kFarthest);
}

} // namespace

void Set(int opcode, ByteReader& data, Port& port, Canvas& canvas, Budget& budget)
{
    switch (opcode) {
    case kClip: canvas.Clip(Region::Read(data, port.offset, budget)); break;
    case kPnSize: port.penSize = NotNegative(ReadPoint(data)); break;
    case kPnMode: port.penMode = data.U16(); break;
    case kOvSize: port.ovalSize = ReadPoint(data); break;
    case kOrigin: MoveOrigin(data, port); break;
    default:
        SetText(opcode, data, port.text);
        SetColour(opcode, data, port);
        SetPattern(opcode, data, port, budget);
        break;
    }
}

} // namespace veltrane::imaging::pict
