#include "imaging/pict/text/Text.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "imaging/pict/Opcodes.h"
#include "imaging/pict/drawing/Shapes.h"
#include "imaging/pict/text/Fonts.h"
#include "imaging/pict/text/MacRoman.h"

namespace veltrane::imaging::pict {

namespace {

enum Style {
    kBold = 1,
    kItalic = 2,
    kUnderline = 4,
    kOutline = 8,
    kShadow = 16,
    kCondense = 32,
    kExtend = 64
};

constexpr int kSystemSize = 12;
constexpr double kLargestSize = 4096; ///< pixels; the rasteriser's limit is not far beyond
constexpr int kGlyphCost = 10'000; ///< of the budget, beside its pixels
constexpr int kFontCost = 1'000'000; ///< of finding one among hundreds

// A name from a file goes to the system's font matcher: plain ASCII or not at all.
std::string PlainName(std::string_view name)
{
    const auto plain = [](char c) { return c >= ' ' && c <= '~'; };
    return std::ranges::all_of(name, plain) ? std::string(name) : std::string();
}

// Moves the place where text begins, as the opcode says, and gives the text.
Bytes ReadText(int opcode, ByteReader& data, Point& at)
{
    if (opcode == kLongText) {
        at = ReadPoint(data);
    } else {
        if (opcode != kDvText)
            at.x += data.U8();
        if (opcode != kDhText)
            at.y += data.U8();
    }
    return data.Take(data.U8());
}

double SizeOf(const TextStyle& style, double scale)
{
    return std::min((style.size > 0 ? style.size : kSystemSize) * scale, kLargestSize);
}

} // namespace

/// A piece of text with each glyph's place.
struct TextPainter::Line {
    struct Glyph {
        char32_t character;
        std::shared_ptr<Typeface> face;
        double x; ///< from the piece's beginning, in pixels
    };
    std::vector<Glyph> glyphs;
    double emWidth = 0;
    double emHeight = 0;
    double width = 0;

    void Draw(Point at, const Transfer& transfer, Canvas& canvas, Budget& budget) const
    {
        for (const Glyph& glyph : glyphs) {
            budget.Charge(kGlyphCost);
            const auto spans = glyph.face->Draw(
                glyph.character, at.x + glyph.x, at.y, emWidth, emHeight, canvas.Visible());
            for (const GlyphSpan& span : spans)
                canvas.Tint(span.y, span.left, span.right, span.coverage, transfer);
        }
    }

    // Hollow letters: a rim of one pixel, then the letter in the background's colour; a shadow falls to
    // the right and below.
    void DrawHollow(Point at, int face, const Transfer& transfer, Canvas& canvas, Budget& budget) const
    {
        for (const Point by : { Point { -1, 0 }, Point { 1, 0 }, Point { 0, -1 }, Point { 0, 1 } })
            Draw(Offset(at, by), transfer, canvas, budget);
        if ((face & kShadow) != 0) {
            for (const Point by : { Point { 1, 1 }, Point { 2, 2 } })
                Draw(Offset(at, by), transfer, canvas, budget);
        }
        Transfer inside = transfer;
        inside.fore = transfer.back;
        Draw(at, inside, canvas, budget);
    }
};

std::shared_ptr<Typeface> TextPainter::Face(const TextStyle& style, char32_t needed, Budget& budget)
{
    const Substitute substitute = SubstituteFor(style);
    const bool bold = substitute.bold || (style.face & kBold) != 0;
    const bool italic = (style.face & kItalic) != 0;
    constexpr std::size_t kMostFaces = 64; // a picture of real text has a handful
    if (faces.size() >= kMostFaces)
        faces.clear();
    const std::string family = PlainName(substitute.family);
    const auto [place, fresh] = faces.try_emplace({ family, bold, italic, needed });
    if (!fresh)
        return place->second;
    budget.Charge(kFontCost);
    place->second = Typeface::Find(family, bold, italic, needed);
    return place->second;
}

// Places the glyphs. The substitute's letters are made as wide as the original's are on average, so that
// lines keep their length and pieces that follow each other do not collide.
bool TextPainter::Lay(Line& line, Bytes text, const TextStyle& style, Budget& budget)
{
    const Substitute substitute = SubstituteFor(style);
    const std::shared_ptr<Typeface> face = Face(style, 0, budget);
    if (!face)
        return false;
    line.emHeight = SizeOf(style, style.scaleY);
    line.emWidth = SizeOf(style, style.scaleX);
    if (const double mean = face->MeanLetterWidth(); substitute.letterWidth > 0 && mean > 0)
        line.emWidth *= std::clamp(substitute.letterWidth / mean, 0.7, 1.3);
    const double pixel = line.emHeight / (style.size > 0 ? style.size : kSystemSize);
    const double extra = (style.face & kCondense) != 0 ? -pixel : (style.face & kExtend) != 0 ? pixel : 0;
    for (const std::uint8_t byte : text) {
        const char32_t character = substitute.symbols ? SymbolCharacter(byte) : MacRomanCharacter(byte);
        const std::shared_ptr<Typeface> own = face->Has(character) ? face : Face(style, character, budget);
        line.glyphs.push_back({ character, own ? own : face, line.width });
        line.width += line.glyphs.back().face->Advance(character) * line.emWidth + extra + style.letterExtra;
        if (byte == ' ')
            line.width += style.spaceExtra;
    }
    return true;
}

void TextPainter::Draw(int opcode, ByteReader& data, Port& port, Canvas& canvas, Budget& budget)
{
    TextStyle& style = port.text;
    const Bytes text = ReadText(opcode, data, style.at);
    Line line;
    if (text.empty() || !Lay(line, text, style, budget))
        return;
    const Point at = Offset(style.at, port.offset);
    const int right = at.x + static_cast<int>(std::lround(std::clamp(line.width, 0.0, 1e6)));
    Transfer transfer = port.With(style.mode);
    transfer.twoColours = true;
    if (Rgba paper = kWhite; Replaces(transfer, kWhite, paper)) {
        const Typeface& face = *line.glyphs.front().face;
        const int top = at.y - static_cast<int>(std::lround(face.Ascent() * line.emHeight));
        const int bottom = at.y + static_cast<int>(std::lround(face.Descent() * line.emHeight));
        canvas.Fill(RectShape({ at.x, top, right, bottom }), Pattern::White(), transfer);
    }
    if ((style.face & (kOutline | kShadow)) != 0)
        line.DrawHollow(at, style.face, transfer, canvas, budget);
    else
        line.Draw(at, transfer, canvas, budget);
    if ((style.face & kUnderline) != 0) {
        const int thick = std::max(static_cast<int>(std::lround(line.emHeight / 16)), 1);
        canvas.Fill(RectShape({ at.x, at.y + thick, right, at.y + 2 * thick }), Pattern::Black(), transfer);
    }
}

} // namespace veltrane::imaging::pict
