#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/lzw/GifLzw.h"
#include "tests/support/Naming.h"

using namespace veltrane;
using imaging::GifLzw;
using Indices = std::vector<std::uint8_t>;

namespace {

enum class WhenFull { Clear, GoOn };

// Packs as GIF 89a, appendix F, tells writers to, in data blocks of `blockSize` bytes.
class Packer {
public:
    Packer(unsigned codeSize, WhenFull whenFull) : clear(1U << codeSize), whenFull(whenFull) { Start(); }

    Indices Pack(const Indices& indices, std::size_t blockSize)
    {
        Put(clear);
        int string = -1;
        for (const std::uint8_t index : indices) {
            const auto known = string < 0 ? codes.end() : codes.find({ string, index });
            if (string < 0 || known != codes.end()) {
                string = string < 0 ? index : known->second;
                continue;
            }
            Put(static_cast<unsigned>(string));
            Add(string, index);
            string = index;
        }
        Put(static_cast<unsigned>(string));
        Put(clear + 1);
        return Blocks(blockSize);
    }

private:
    void Start()
    {
        codes.clear();
        next = clear + 2;
        for (width = 1; 1U << width <= clear;)
            ++width;
    }
    void Add(int string, std::uint8_t index)
    {
        if (next < 4096) {
            width += next == 1U << width ? 1U : 0U;
            codes[{ string, index }] = static_cast<int>(next++);
        } else if (whenFull == WhenFull::Clear) {
            Put(clear);
            Start();
        }
    }
    void Put(unsigned code)
    {
        for (unsigned i = 0; i < width; ++i)
            bits.push_back((code >> i & 1) != 0);
    }
    [[nodiscard]] Indices Blocks(std::size_t blockSize) const
    {
        Indices bytes((bits.size() + 7) / 8), blocks;
        for (std::size_t i = 0; i < bits.size(); ++i)
            bytes[i / 8] |= static_cast<std::uint8_t>(bits[i] << i % 8);
        for (std::size_t at = 0; at < bytes.size(); at += blockSize) {
            const std::size_t length = std::min(blockSize, bytes.size() - at);
            blocks.push_back(static_cast<std::uint8_t>(length));
            blocks.insert(blocks.end(), bytes.data() + at, bytes.data() + at + length);
        }
        blocks.push_back(0);
        return blocks;
    }

    unsigned clear, next = 0, width = 0;
    WhenFull whenFull;
    std::map<std::pair<int, std::uint8_t>, int> codes;
    std::vector<bool> bits;
};

struct LzwCase {
    std::string_view name;
    unsigned codeSize;
    std::size_t width, rows, blockSize;
    WhenFull whenFull;
    unsigned (*index)(std::size_t at, unsigned drawn);
};

const LzwCase kCases[] = {
    { "StringsThatEndInThemselves", 8, 500, 400, 255, WhenFull::GoOn,
        [](std::size_t, unsigned) { return 7U; } },
    { "StringsOfEveryLengthAroundAPiece", 2, 97, 97, 255, WhenFull::Clear,
        [](std::size_t at, unsigned) { return at % 1009 % 37 % 17 < 9 ? 1U : 2U; } },
    { "TableFullAndCleared", 8, 300, 300, 255, WhenFull::Clear,
        [](std::size_t, unsigned n) { return n % 256; } },
    { "TableFullAndKept", 8, 300, 300, 255, WhenFull::GoOn,
        [](std::size_t at, unsigned n) {
            return n % 64 == 0 ? n / 64 % 256 : static_cast<unsigned>(at / 300);
        } },
    { "FewestColours", 1, 64, 64, 255, WhenFull::Clear, [](std::size_t, unsigned n) { return n % 2; } },
    { "CodesAcrossSmallBlocks", 4, 61, 67, 1, WhenFull::Clear,
        [](std::size_t, unsigned n) { return n % 16; } },
    { "CodesAcrossOddBlocks", 7, 61, 67, 11, WhenFull::Clear,
        [](std::size_t at, unsigned n) { return n % 8 == 0 ? n / 8 % 128 : static_cast<unsigned>(at % 3); } },
    { "RowsLongerThanTheRoom", 3, 60'000, 3, 255, WhenFull::Clear,
        [](std::size_t at, unsigned n) { return at % 1000 == 0 ? n % 8 : 5U; } },
    { "RowsOfOneIndex", 8, 1, 60'000, 255, WhenFull::Clear,
        [](std::size_t at, unsigned n) {
            return n % 4 == 0 ? n / 4 % 256 : static_cast<unsigned>(at % 256);
        } },
};

Indices Draw(const LzwCase& c)
{
    Indices indices(c.width * c.rows);
    std::mt19937 draw(3);
    for (std::size_t i = 0; i < indices.size(); ++i)
        indices[i] = static_cast<std::uint8_t>(c.index(i, static_cast<unsigned>(draw() >> 8)));
    return indices;
}

class GifUnpacking : public testing::TestWithParam<LzwCase> { };

void PrintTo(const LzwCase& row, std::ostream* to)
{
    *to << row.name;
}

} // namespace

TEST_P(GifUnpacking, GivesTheRowsThatWerePacked)
{
    const LzwCase& c = GetParam();
    const Indices indices = Draw(c), blocks = Packer(c.codeSize, c.whenFull).Pack(indices, c.blockSize);
    GifLzw unpacker(blocks, static_cast<int>(c.codeSize), c.width);
    for (std::size_t y = 0; y < c.rows; ++y) {
        const std::uint8_t* const row = unpacker.Next(c.width);
        ASSERT_NE(row, nullptr) << "row " << y;
        ASSERT_TRUE(std::equal(row, row + c.width, indices.data() + y * c.width)) << "row " << y;
    }
    EXPECT_EQ(unpacker.Next(c.width), nullptr) << "behind the end";
}

INSTANTIATE_TEST_SUITE_P(Lzw, GifUnpacking, testing::ValuesIn(kCases), tests::kByName);
