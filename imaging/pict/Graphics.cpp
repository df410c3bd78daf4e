// Blocks of 4 x 4 from left to right and down, in numbers of a palette of 256. Pairs, fours and eights of
// colours are kept as they come, up to 256 of each, so that later blocks can name them by a byte.

#include <array>
#include <cstddef>
#include <span>

#include "imaging/Fault.h"
#include "imaging/bits/ByteReader.h"
#include "imaging/pict/stills/StillDecoders.h"

namespace veltrane::imaging::pict {

namespace {

using Block = std::array<std::uint8_t, 16>;

/// The sets of `Size` colours that came so far; the oldest gives way.
template<std::size_t Size>
class Sets {
public:
    /// A new set from the data, or an old one by its number.
    const std::array<std::uint8_t, Size>& Read(ByteReader& in, bool byNumber)
    {
        if (byNumber)
            return sets[in.U8()];
        auto& set = sets[next++];
        for (std::uint8_t& colour : set)
            colour = in.U8();
        return set;
    }

private:
    std::array<std::array<std::uint8_t, Size>, 256> sets {};
    std::uint8_t next = 0;
};

// Each pixel's choice among the colours, `bits` bits wide, the first in the highest.
Block Chosen(std::uint64_t choices, int bits, std::span<const std::uint8_t> colours)
{
    Block block {};
    for (std::size_t i = 0; i < block.size(); ++i) {
        const int shift = bits * (15 - static_cast<int>(i));
        block[i] = colours[choices >> shift & ((1U << bits) - 1)];
    }
    return block;
}

// Three bits a pixel make 48, but scattered: the upper twelve bits of three words come first, the lowest
// four of each behind them.
std::uint64_t ReadEights(ByteReader& in)
{
    const std::uint64_t a = in.U16();
    const std::uint64_t b = in.U16();
    const std::uint64_t c = in.U16();
    return (a >> 4) << 36 | (b >> 4) << 24 | (c >> 4) << 12 | (a & 15) << 8 | (b & 15) << 4 | (c & 15);
}

class Graphics {
public:
    explicit Graphics(const Still& still, StillPixels& pixels)
        : in(still.data, std::endian::big)
        , palette(still.palette)
        , pixels(pixels)
        , across((static_cast<std::size_t>(pixels.Width()) + 3) / 4)
        , blocks(across * ((static_cast<std::size_t>(pixels.Height()) + 3) / 4))
    {
        if (palette.empty())
            throw Fault(Fault::QuickTimeColorTableMissing);
        in.Skip(4); // flags and length
    }

    void Run()
    {
        while (done < blocks.size())
            Step();
        for (std::size_t i = 0; i < blocks.size(); ++i)
            Show(blocks[i], static_cast<int>(i % across) * 4, static_cast<int>(i / across) * 4);
    }

private:
    void Step()
    {
        const int code = in.U8();
        const int kind = code >> 5; // the fifth bit says where the count or the colours come from
        const bool flag = (code & 0x10) != 0;
        const bool coloured = kind >= 4;
        const int count = flag && !coloured ? in.U8() + 1 : (code & 15) + 1;
        switch (kind) {
        case 0: Skip(count); break;
        case 1: Repeat(1, count); break;
        case 2: Repeat(2, count * 2); break;
        case 3: Same(in.U8(), count); break;
        case 4: Sets2(pairs.Read(in, flag), count); break;
        case 5: Sets4(fours.Read(in, flag), count); break;
        case 6: Sets8(eights.Read(in, flag), count); break;
        default: Raw(count); break;
        }
    }

    void Put(const Block& block)
    {
        if (done < blocks.size())
            blocks[done++] = block;
    }
    void Skip(int count)
    {
        for (; count > 0; --count)
            Put(Block {});
    }
    // The last block, or the last two in turn, once more.
    void Repeat(std::size_t distance, int count)
    {
        if (done < distance)
            throw Fault(Fault::QuickTimeDamaged);
        for (; count > 0 && done < blocks.size(); --count)
            Put(blocks[done - distance]);
    }
    void Same(std::uint8_t colour, int count)
    {
        Block block {};
        block.fill(colour);
        for (; count > 0; --count)
            Put(block);
    }
    void Sets2(std::array<std::uint8_t, 2> colours, int count)
    {
        for (; count > 0; --count)
            Put(Chosen(in.U16(), 1, colours));
    }
    void Sets4(std::array<std::uint8_t, 4> colours, int count)
    {
        for (; count > 0; --count)
            Put(Chosen(in.U32(), 2, colours));
    }
    void Sets8(std::array<std::uint8_t, 8> colours, int count)
    {
        for (; count > 0; --count)
            Put(Chosen(ReadEights(in), 3, colours));
    }
    void Raw(int count)
    {
        for (; count > 0; --count) {
            Block block {};
            for (std::uint8_t& colour : block)
                colour = in.U8();
            Put(block);
        }
    }
    void Show(const Block& block, int x, int y)
    {
        for (int i = 0; i < 16; ++i)
            pixels.Set(x + i % 4, y + i / 4, palette[block[static_cast<std::size_t>(i)]]);
    }

    ByteReader in;
    const std::vector<Rgba>& palette;
    StillPixels& pixels;
    std::size_t across;
    std::vector<Block> blocks;
    std::size_t done = 0;
    Sets<2> pairs;
    Sets<4> fours;
    Sets<8> eights;
};

} // namespace

void DecodeGraphics(const Still& still, StillPixels& pixels)
{
    Graphics(still, pixels).Run();
}

} // namespace veltrane::imaging::pict
