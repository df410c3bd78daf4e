// Blocks of 4 x 4 from left to right and down, in colours of five bits a component.

#include <array>

#include "imaging/bits/ByteReader.h"
#include "imaging/pict/stills/StillDecoders.h"

namespace veltrane::imaging::pict {

namespace {

using Colours = std::array<Rgba, 4>;

// The two colours told and two between them, a third of the way each.
Colours Between(std::uint16_t a, std::uint16_t b) noexcept
{
    const auto mixed = [a, b](int parts) {
        int word = 0;
        for (const int shift : { 10, 5, 0 })
            word |= (parts * (a >> shift & 31) + (32 - parts) * (b >> shift & 31)) >> 5 << shift;
        return FromFiveBits(static_cast<std::uint16_t>(word));
    };
    return { FromFiveBits(b), mixed(11), mixed(21), FromFiveBits(a) };
}

class Blocks {
public:
    explicit Blocks(StillPixels& pixels) noexcept : pixels(pixels) { }

    [[nodiscard]] bool Done() const noexcept { return y >= pixels.Height(); }
    void Skip() noexcept
    {
        x += 4;
        if (x >= pixels.Width()) {
            x = 0;
            y += 4;
        }
    }
    void Fill(Rgba colour)
    {
        for (int i = 0; i < 16; ++i)
            pixels.Set(x + i % 4, y + i / 4, colour);
        Skip();
    }
    void Four(ByteReader& in, const Colours& colours)
    {
        const std::uint32_t choices = in.U32();
        for (int i = 0; i < 16; ++i)
            pixels.Set(x + i % 4, y + i / 4, colours[choices >> (30 - 2 * i) & 3]);
        Skip();
    }
    void Sixteen(ByteReader& in, std::uint16_t first)
    {
        for (int i = 0; i < 16; ++i)
            pixels.Set(x + i % 4, y + i / 4, FromFiveBits(i == 0 ? first : in.U16()));
        Skip();
    }

private:
    StillPixels& pixels;
    int x = 0;
    int y = 0;
};

// A code of the form 1ccnnnnn: n + 1 blocks left out, in one colour or in four.
void Run(int code, ByteReader& in, Blocks& blocks)
{
    const int kind = code & 0xE0;
    const std::uint16_t a = kind == 0xA0 || kind == 0xC0 ? in.U16() : std::uint16_t { 0 };
    const Colours colours = kind == 0xC0 ? Between(a, in.U16()) : Colours {};
    for (int left = (code & 31) + 1; left > 0 && !blocks.Done(); --left) {
        if (kind == 0xC0)
            blocks.Four(in, colours);
        else if (kind == 0xA0)
            blocks.Fill(FromFiveBits(a));
        else
            blocks.Skip();
    }
}

} // namespace

void DecodeRoadPizza(const Still& still, StillPixels& pixels)
{
    ByteReader in(still.data, std::endian::big);
    in.Skip(4); // a mark and the length
    Blocks blocks(pixels);
    while (!blocks.Done()) {
        const int code = in.U8();
        if ((code & 0x80) != 0) {
            Run(code, in, blocks);
            continue;
        }
        // No code but a colour: of a single block in four colours when the next one is marked.
        const auto first = static_cast<std::uint16_t>(code << 8 | in.U8());
        ByteReader ahead = in;
        if ((ahead.U8() & 0x80) != 0)
            blocks.Four(in, Between(first, in.U16()));
        else
            blocks.Sixteen(in, first);
    }
}

} // namespace veltrane::imaging::pict
