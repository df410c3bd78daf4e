#include "platform/codecs/pict/Player.h"

#include "platform/codecs/pict/Bits.h"
#include "platform/codecs/pict/Canvas.h"
#include "platform/codecs/pict/Drawing.h"
#include "platform/codecs/pict/Opcodes.h"
#include "platform/codecs/pict/Port.h"
#include "platform/codecs/pict/QuickTime.h"
#include "platform/codecs/pict/Settings.h"
#include "platform/codecs/pict/Text.h"

namespace veltrane::codecs::pict {

namespace {

// QuickTime puts a message behind its image for machines without it, and before the message a pen size
// that no pen has: this height, and as its width the number of bytes to step over.
constexpr int kFallbackMark = 0xAE;

class Player {
public:
    Player(Bytes file, const Header& header, const Limits& limits)
        : header(header)
        , innerLimits(limits)
        , in(file.subspan(header.start), std::endian::big)
        , budget(std::int64_t { header.frame.Width() } * header.frame.Height(),
              static_cast<std::int64_t>(file.size()))
        , canvas(header.frame.Width(), header.frame.Height(), budget)
    {
        in.Seek(header.opcodes - header.start);
        innerLimits.maxBytes -= std::int64_t { header.frame.Width() } * header.frame.Height() * 4;
        port.offset = { -header.frame.left, -header.frame.top };
    }

    Bitmap Run()
    {
        while (Step()) { }
        return canvas.Finish();
    }

private:
    bool Step();
    void Draw(int opcode, ByteReader& data);
    void SkipFallback();

    const Header& header;
    Limits innerLimits; ///< for pictures within the picture, which stands in memory already
    ByteReader in;
    Budget budget;
    Canvas canvas;
    Port port;
    TextPainter text;
};

// One opcode; false when there is none left.
bool Player::Step()
{
    const std::size_t width = header.version == 1 ? 1 : 2;
    if (in.Remaining() < width)
        return false;
    const int opcode = width == 1 ? in.U8() : in.U16();
    if (opcode == kEndPic)
        return false;
    budget.Charge(1);
    if (const auto length = DataLength(opcode, in)) {
        ByteReader data = in.Nested(*length);
        Draw(opcode, data);
    } else {
        Draw(opcode, in);
    }
    if (in.Position() % width != 0 && in.Remaining() > 0)
        in.Skip(1);
    if (opcode == kCompressedQuickTime || opcode == kUncompressedQuickTime)
        SkipFallback();
    return true;
}

void Player::SkipFallback()
{
    ByteReader ahead = in;
    if (ahead.Remaining() < 6 || ahead.U16() != kPnSize || ahead.U16() != kFallbackMark)
        return;
    const std::size_t length = ahead.U16();
    if (length <= ahead.Remaining())
        ahead.Skip(length);
    in = ahead;
}

void Player::Draw(int opcode, ByteReader& data)
{
    if (opcode >= kLine && opcode <= kShortLineFrom)
        DrawLine(opcode, data, port, canvas);
    else if (opcode >= kLongText && opcode <= kDhDvText)
        text.Draw(opcode, data, port, canvas, budget);
    else if (opcode >= kRects && opcode < kBitsRect)
        DrawShape(opcode, data, port, canvas, budget);
    else if (IsBits(opcode))
        DrawBits(opcode, data, port, canvas, budget);
    else if (opcode == kCompressedQuickTime || opcode == kUncompressedQuickTime)
        DrawQuickTime(opcode, data, port, canvas, budget, innerLimits);
    else if (opcode < kRects)
        Set(opcode, data, port, canvas, budget);
}

} // namespace

Bitmap Play(Bytes file, const Header& header, const Limits& limits)
{
    return Player(file, header, limits).Run();
}

} // namespace veltrane::codecs::pict
