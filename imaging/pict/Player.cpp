#include "imaging/pict/Player.h"

#include <string_view>

#include "imaging/pict/Bits.h"
#include "imaging/pict/Drawing.h"
#include "imaging/pict/Opcodes.h"
#include "imaging/pict/Port.h"
#include "imaging/pict/Settings.h"
#include "imaging/pict/drawing/Canvas.h"
#include "imaging/pict/stills/QuickTime.h"
#include "imaging/pict/text/Text.h"

namespace veltrane::imaging::pict {

namespace {

// QuickTime puts a message behind its image for machines without it, and before the message a pen size
// that no pen has: this height, and as its width the number of bytes to step over.
constexpr int kFallbackMark = 0xAE;

constexpr int kOpcodeCost = 16; ///< of the budget, beside what it draws

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
    [[nodiscard]] bool IsFallbackText(ByteReader data);

    const Header& header;
    Limits innerLimits; ///< for pictures within the picture, which stands in memory already
    ByteReader in;
    Budget budget;
    Canvas canvas;
    Port port;
    TextPainter text;
    Rect stillAt; ///< of the opcode before, when it was a still: some writers put a blank bitmap over it
    bool stillShown = false;
    bool fallbackBegun = false;
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
    budget.Charge(kOpcodeCost);
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
    stillShown = true;
    ByteReader ahead = in;
    if (ahead.Remaining() < 6 || ahead.U16() != kPnSize || ahead.U16() != kFallbackMark)
        return;
    const std::size_t length = ahead.U16();
    if (length <= ahead.Remaining())
        ahead.Skip(length);
    in = ahead;
}

// Without that mark the message is known by its first words, and whatever text follows belongs to it.
bool Player::IsFallbackText(ByteReader data)
{
    constexpr std::string_view kFirstWord = "QuickTime";
    const Bytes bytes = data.Take(data.Remaining());
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    fallbackBegun = fallbackBegun || (stillShown && text.find(kFirstWord) != std::string_view::npos);
    return fallbackBegun;
}

void Player::Draw(int opcode, ByteReader& data)
{
    Rect shownAt;
    if (opcode >= kLine && opcode <= kShortLineFrom)
        DrawLine(opcode, data, port, canvas);
    else if (opcode >= kLongText && opcode <= kDhDvText) {
        if (!IsFallbackText(data))
            text.Draw(opcode, data, port, canvas, budget);
    } else if (opcode >= kRects && opcode < kBitsRect)
        DrawShape(opcode, data, port, canvas, budget);
    else if (IsBits(opcode))
        DrawBits(opcode, data, port, canvas, budget, stillAt);
    else if (opcode == kCompressedQuickTime || opcode == kUncompressedQuickTime)
        shownAt = DrawQuickTime(opcode, data, port, canvas, budget, innerLimits);
    else if (opcode < kRects)
        Set(opcode, data, port, canvas, budget);
    stillAt = shownAt;
}

} // namespace

Bitmap Play(Bytes file, const Header& header, const Limits& limits)
{
    return Player(file, header, limits).Run();
}

} // namespace veltrane::imaging::pict
