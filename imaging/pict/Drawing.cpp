#include "imaging/pict/Drawing.h"

#include <utility>
#include <vector>

#include "imaging/pict/Opcodes.h"
#include "imaging/pict/drawing/Shapes.h"
#include "imaging/pict/text/Outlines.h"

namespace veltrane::imaging::pict {

namespace {

enum Verb { kFrame, kPaint, kErase, kInvert, kFill };

constexpr int kSame = 8; ///< set in the opcodes that repeat the last rectangle
constexpr int kPatCopy = 8;
constexpr int kPatXor = 10;
constexpr int kHilite = 50;

class Brush {
public:
    Brush(int verb, Port& port, Canvas& canvas) : canvas(canvas), pattern(Choose(verb, port))
    {
        int mode = verb == kFrame || verb == kPaint ? port.penMode : kPatCopy;
        if (verb == kInvert)
            mode = std::exchange(port.hiliting, false) ? kHilite : kPatXor;
        transfer = port.With(mode, pattern);
    }
    void Fill(const Shape& shape) { canvas.Fill(shape, pattern, transfer); }

private:
    static const Pattern& Choose(int verb, const Port& port)
    {
        static const Pattern black = Pattern::Black();
        switch (verb) {
        case kErase: return port.backPattern;
        case kInvert: return black;
        case kFill: return port.fillPattern;
        default: return port.penPattern;
        }
    }

    Canvas& canvas;
    const Pattern& pattern;
    Transfer transfer;
};

void DrawRect(int verb, const Rect& rect, Point pen, Brush& brush)
{
    const RectShape outer(rect);
    const RectShape inner(Inset(rect, pen.x, pen.y));
    if (verb == kFrame)
        brush.Fill(CombinedShape(outer, CombinedShape::How::Without, inner));
    else
        brush.Fill(outer);
}

void DrawRoundRect(int verb, const Rect& rect, Point oval, Point pen, Brush& brush)
{
    const RoundRectShape outer(rect, oval.x, oval.y);
    const RoundRectShape inner(Inset(rect, pen.x, pen.y), oval.x - 2 * pen.x, oval.y - 2 * pen.y);
    if (verb == kFrame)
        brush.Fill(CombinedShape(outer, CombinedShape::How::Without, inner));
    else
        brush.Fill(outer);
}

// A framed arc has no straight sides: it is the piece of the oval's frame that lies in the wedge.
void DrawArc(int verb, const Rect& rect, ByteReader& data, Point pen, Brush& brush)
{
    const int start = data.I16();
    const WedgeShape wedge(rect, start, data.I16());
    const RoundRectShape outer = RoundRectShape::Oval(rect);
    const RoundRectShape inner = RoundRectShape::Oval(Inset(rect, pen.x, pen.y));
    const CombinedShape frame(outer, CombinedShape::How::Without, inner);
    const Shape& whole = verb == kFrame ? static_cast<const Shape&>(frame) : outer;
    brush.Fill(CombinedShape(whole, CombinedShape::How::Both, wedge));
}

void DrawRectangular(int opcode, ByteReader& data, Port& port, Canvas& canvas)
{
    const int verb = opcode & 7;
    if ((opcode & kSame) == 0)
        port.lastRect = ReadRect(data);
    const Rect rect = Offset(port.lastRect, port.offset);
    Brush brush(verb, port, canvas);
    switch (opcode & 0xF0) {
    case kRects: DrawRect(verb, rect, port.penSize, brush); break;
    case kRoundRects: DrawRoundRect(verb, rect, port.ovalSize, port.penSize, brush); break;
    case kOvals: DrawRoundRect(verb, rect, { rect.Width(), rect.Height() }, port.penSize, brush); break;
    default: DrawArc(verb, rect, data, port.penSize, brush); break;
    }
}

// Reads a Polygon: size, bounding box, points. Source: Imaging With QuickDraw, chapter 3, "Polygon".
std::vector<Point> ReadPolygon(ByteReader& data, Point offset)
{
    data.Skip(10);
    std::vector<Point> points(data.Remaining() / 4);
    for (Point& point : points)
        point = Offset(ReadPoint(data), offset);
    return points;
}

void DrawPolygon(int verb, ByteReader& data, Port& port, Canvas& canvas, Budget& budget)
{
    const std::vector<Point> points = ReadPolygon(data, port.offset);
    constexpr std::int64_t kCornerCost = 32;
    budget.Charge(static_cast<std::int64_t>(points.size()) * kCornerCost);
    Brush brush(verb, port, canvas);
    if (verb != kFrame) {
        brush.Fill(PolygonShape(points));
        return;
    }
    for (std::size_t i = 1; i < points.size(); ++i)
        brush.Fill(LineShape(points[i - 1], points[i], port.penSize.x, port.penSize.y));
}

void DrawRegion(int verb, ByteReader& data, Port& port, Canvas& canvas, Budget& budget)
{
    const Region region = Region::Read(data, port.offset, budget);
    Brush brush(verb, port, canvas);
    if (verb == kFrame) {
        const ShrunkRegion inner(region, port.penSize.x, port.penSize.y);
        brush.Fill(CombinedShape(region, CombinedShape::How::Without, inner));
    } else
        brush.Fill(region);
}

Point ReadShortMove(ByteReader& data)
{
    const int across = data.I8();
    return { across, data.I8() };
}

} // namespace

void DrawLine(int opcode, ByteReader& data, Port& port, Canvas& canvas)
{
    if (opcode == kLine || opcode == kShortLine)
        port.penAt = ReadPoint(data);
    const bool shortened = opcode == kShortLine || opcode == kShortLineFrom;
    const Point end = shortened ? Offset(port.penAt, ReadShortMove(data)) : ReadPoint(data);
    Brush brush(kPaint, port, canvas);
    brush.Fill(
        LineShape(Offset(port.penAt, port.offset), Offset(end, port.offset), port.penSize.x, port.penSize.y));
    port.penAt = end;
}

void DrawShape(int opcode, ByteReader& data, Port& port, Canvas& canvas, Budget& budget)
{
    const int verb = opcode & 7;
    if (verb > kFill)
        return; // reserved
    if (opcode < kPolys)
        DrawRectangular(opcode, data, port, canvas);
    else if ((opcode & kSame) != 0)
        return; // "same polygon" and "same region" were never put to use
    else if (opcode < kRegions)
        DrawPolygon(verb, data, port, canvas, budget);
    else
        DrawRegion(verb, data, port, canvas, budget);
}

} // namespace veltrane::imaging::pict
