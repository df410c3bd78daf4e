// A key frame: strips from top to bottom, each with two code books of up to 256 vectors of 2 x 2 pixels and
// a choice for each block of 4 x 4: one vector with its pixels doubled, or four vectors.

#include <algorithm>
#include <array>

#include "imaging/Fault.h"
#include "imaging/bits/ByteReader.h"
#include "imaging/pict/stills/StillDecoders.h"

namespace veltrane::imaging::pict {

namespace {

using Vector = std::array<Rgba, 4>; ///< upper left, upper right, lower left, lower right
using Book = std::array<Vector, 256>;

struct Books {
    Book four {}; ///< for blocks of four vectors
    Book one {};
};

std::uint8_t Clamped(int value) noexcept
{
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

Vector ReadVector(ByteReader& in, bool coloured)
{
    std::array<int, 4> luma {};
    for (int& y : luma)
        y = in.U8();
    const int u = coloured ? in.I8() : 0;
    const int v = coloured ? in.I8() : 0;
    Vector vector {};
    for (std::size_t i = 0; i < 4; ++i)
        vector[i]
            = MakeRgba(Clamped(luma[i] + 2 * v), Clamped(luma[i] - u / 2 - v), Clamped(luma[i] + 2 * u));
    return vector;
}

// Bits from words of 32, the highest first; a word is fetched when its first bit is asked for.
class Flags {
public:
    explicit Flags(ByteReader& in) noexcept : in(in) { }
    bool Next()
    {
        if (left == 0) {
            word = in.U32();
            left = 32;
        }
        return (word >> --left & 1) != 0;
    }

private:
    ByteReader& in;
    std::uint32_t word = 0;
    int left = 0;
};

constexpr int kSelective = 0x0100; ///< only the vectors that a flag names
constexpr int kOther = 0x0200; ///< the book for whole blocks
constexpr int kGrey = 0x0400; ///< vectors without colour

void ReadBook(int kind, ByteReader& in, Books& books)
{
    Book& book = (kind & kOther) != 0 ? books.one : books.four;
    const bool coloured = (kind & kGrey) == 0;
    Flags flags(in);
    for (std::size_t i = 0; i < book.size() && in.Remaining() >= 4; ++i) {
        if ((kind & kSelective) == 0 || flags.Next())
            book[i] = ReadVector(in, coloured);
    }
}

class Strip {
public:
    Strip(int top, int bottom, StillPixels& pixels) noexcept : top(top), bottom(bottom), pixels(pixels) { }

    // Kinds: 0x3000 a flag a block tells four vectors from one; 0x3100 a flag before it tells whether the
    // block is there at all; 0x3200 all blocks have one vector.
    void Draw(int kind, ByteReader& in, const Books& books)
    {
        Flags flags(in);
        for (int y = top; y < bottom; y += 4) {
            for (int x = 0; x < pixels.Width(); x += 4) {
                if (kind == 0x3100 && !flags.Next())
                    continue;
                if (kind != 0x3200 && flags.Next())
                    Four(x, y, in, books.four);
                else
                    One(x, y, books.one[in.U8()]);
            }
        }
    }

private:
    void Four(int x, int y, ByteReader& in, const Book& book)
    {
        for (int part = 0; part < 4; ++part) {
            const Vector& vector = book[in.U8()];
            for (int i = 0; i < 4; ++i)
                pixels.Set(
                    x + part % 2 * 2 + i % 2, y + part / 2 * 2 + i / 2, vector[static_cast<std::size_t>(i)]);
        }
    }
    void One(int x, int y, const Vector& vector)
    {
        for (int i = 0; i < 16; ++i)
            pixels.Set(x + i % 4, y + i / 4, vector[static_cast<std::size_t>(i / 8 * 2 + i % 4 / 2)]);
    }

    int top;
    int bottom;
    StillPixels& pixels;
};

void ReadStrip(ByteReader in, Strip strip, Books& books)
{
    bool drawn = false;
    while (in.Remaining() >= 4) {
        const int kind = in.U16();
        const std::size_t size = in.U16();
        ByteReader chunk = in.Nested(std::max<std::size_t>(size, 4) - 4);
        if (kind >= 0x2000 && kind < 0x2800)
            ReadBook(kind, chunk, books);
        else if (kind >= 0x3000 && kind <= 0x3200)
            strip.Draw(kind, chunk, books), drawn = true;
    }
    if (!drawn)
        throw Fault(Fault::CinepakIncomplete);
}

} // namespace

void DecodeCinepak(const Still& still, StillPixels& pixels)
{
    ByteReader in(still.data, std::endian::big);
    in.Skip(8); // flags, length, size
    const int strips = in.U16();
    Books books; // each strip starts from what the one above left
    int top = 0;
    for (int i = 0; i < strips && top < pixels.Height(); ++i) {
        in.Skip(2); // key frame or not
        const std::size_t size = in.U16();
        const int first = in.U16();
        in.Skip(2);
        const int last = in.U16();
        in.Skip(2);
        // Strips below the first count from their own top.
        const int height = first == 0 ? last : last - first;
        if (size < 12 || height <= 0)
            throw Fault(Fault::CinepakDamaged);
        ReadStrip(in.Nested(size - 12), Strip(top, std::min(top + height, pixels.Height()), pixels), books);
        top += height;
    }
    if (top < pixels.Height())
        throw Fault(Fault::CinepakIncomplete);
}

} // namespace veltrane::imaging::pict
