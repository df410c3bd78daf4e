#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <random>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/deflate/Search.h"
#include "imaging/png/PaletteIndex.h"
#include "imaging/png/StoredRows.h"
#include "tests/support/Naming.h"

using namespace veltrane;
using namespace veltrane::imaging;
using namespace veltrane::imaging::png;

namespace {

using Data = std::vector<std::uint8_t>;

// ---- What searches cut

// A byte of a stream, from one drawn for it, its place in its row and the number of the row.
using Fill = unsigned (*)(unsigned drawn, std::size_t x, std::size_t y);

struct CutCase {
    std::string_view name;
    Likeness likeness;
    Layout layout;
    std::size_t rows;
    Fill fill;
    std::size_t leastMatched; ///< bytes in matches, at least
};

constexpr Fill kNoise = [](unsigned drawn, std::size_t, std::size_t) { return drawn; };
constexpr Fill kZeros = [](unsigned, std::size_t, std::size_t) { return 0U; };
constexpr Fill kNear = [](unsigned drawn, std::size_t, std::size_t) { return drawn % 5 + 254; };
// Mostly near 0, and now and then a byte that no sample would meet.
constexpr Fill kRareFar = [](unsigned drawn, std::size_t, std::size_t) {
    return drawn % 3001 == 0 ? 100 + drawn % 50 : drawn % 3;
};
constexpr Fill kRuns = [](unsigned drawn, std::size_t x, std::size_t) { return x % 97 < 60 ? 0U : drawn; };
// Rows repeat each other but for their filter bytes.
constexpr Fill kSameRows = [](unsigned, std::size_t x, std::size_t y) {
    return x == 0 ? static_cast<unsigned>(y % 5) : unsigned(x * x * 7);
};
constexpr Fill kPixelsAgain = [](unsigned drawn, std::size_t x, std::size_t y) {
    return (x + 13 * y) % 29 < 12 ? unsigned((x + 13 * y) % 29) * 17 : drawn;
};

// Comes again, but further back than a match may lie; and than 16 bits reach less than once.
constexpr Fill kFarAgain = [](unsigned, std::size_t x, std::size_t y) {
    return static_cast<unsigned>((y % 150 * 301 + x + 1) * 0x9E37'79B9 >> 11);
};

const CutCase kCutCases[] = {
    { "RunsInNoise", Likeness::Residues, { 3, 301 }, 300, kNoise, 0 },
    { "RunsOfNothingElse", Likeness::Residues, { 3, 301 }, 300, kZeros, 90'000 }, // each as long as can be
    { "RunsNearZero", Likeness::Residues, { 3, 301 }, 300, kNear, 0 },
    { "RunsBetweenNoise", Likeness::Residues, { 4, 401 }, 200, kRuns, 40'000 },
    { "RunsWithRareBytes", Likeness::Residues, { 1, 401 }, 200, kRareFar, 0 }, // each needs a code
    { "RunsShorterThanAVector", Likeness::Residues, { 1, 12 }, 1, kZeros, 0 },
    { "GrainInNoise", Likeness::Grain, { 3, 301 }, 300, kNoise, 0 },
    { "GrainOfZeros", Likeness::Grain, { 3, 301 }, 300, kZeros, 80'000 },
    { "GrainRare", Likeness::Grain, { 3, 301 }, 300, kRareFar, 0 },
    { "GrainOfGreys", Likeness::Grain, { 1, 102 }, 500, kSameRows, 40'000 },
    { "GrainOfGreysWithAlpha", Likeness::Grain, { 2, 201 }, 400, kSameRows, 60'000 },
    { "GrainInStepWithRows", Likeness::Grain, { 3, 302 }, 300, kSameRows, 80'000 }, // from pixel to pixel
    { "GrainOfFourBytes", Likeness::Grain, { 4, 401 }, 300, kPixelsAgain, 20'000 },
    { "GrainOfOnePixel", Likeness::Grain, { 4, 5 }, 40'000, kSameRows,
        100'000 }, // 200,000 bytes pass 16 bits
    { "GrainOfTwoBytes", Likeness::Grain, { 1, 2 }, 1, kZeros, 0 }, // less than a look takes
    { "GrainTooFarAway", Likeness::Grain, { 3, 301 }, 400, kFarAgain, 0 },
    { "RepeatsTooFarAway", Likeness::Repeats, { 3, 301 }, 400, kFarAgain, 0 },
    { "RepeatsInNoise", Likeness::Repeats, { 3, 301 }, 300, kNoise, 0 },
    { "RepeatsOfZeros", Likeness::Repeats, { 3, 301 }, 300, kZeros, 89'000 },
    { "RepeatsOfRows", Likeness::Repeats, { 3, 302 }, 300, kSameRows, 85'000 },
    { "RepeatsAnywhere", Likeness::Repeats, { 1, 401 }, 300, kPixelsAgain, 30'000 },
};

void PrintTo(const CutCase& row, std::ostream* to)
{
    *to << row.name;
}

Data Filled(const CutCase& c)
{
    Data data;
    std::mt19937 draw(11);
    for (std::size_t y = 0; y < c.rows; ++y)
        for (std::size_t x = 0; x < c.layout.stride; ++x)
            data.push_back(static_cast<std::uint8_t>(c.fill(static_cast<unsigned>(draw()), x, y)));
    return data;
}

// What blocks' sequences stand for; and whether their codes know each byte that they take as it is.
class Reader {
public:
    explicit Reader(const Data& data) : data(data) { }

    void Read(const Block& block)
    {
        std::map<std::uint8_t, std::size_t> literals;
        for (const Sequence& sequence : block.sequences) {
            for (std::uint32_t i = 0; i < sequence.literals; ++i)
                ++literals[read.emplace_back(data.at(read.size()))];
            const std::size_t distance = sequence.distance + std::size_t { 1 };
            ASSERT_TRUE(sequence.length == 0 || (distance <= read.size() && distance <= kWindow));
            for (std::uint32_t i = 0; i < sequence.length; ++i)
                read.push_back(read[read.size() - distance]);
            matched += sequence.length;
        }
        for (const auto& [byte, count] : literals)
            EXPECT_GT(block.literals[byte], 0U) << "byte " << int { byte } << " has no code, used " << count;
    }
    Data read;
    std::size_t matched = 0;

private:
    const Data& data;
};

class PngSearch : public testing::TestWithParam<CutCase> { };

} // namespace

// In two parts, as a stream comes: the second knows the first.
TEST_P(PngSearch, CutsIntoWhatWasThere)
{
    const CutCase& c = GetParam();
    const Data data = Filled(c);
    Data padded = data;
    padded.resize(data.size() + 64, 0xEE);
    const std::size_t half = c.rows / 2 * c.layout.stride;
    Search search(kThorough);
    Block block;
    Reader reader(data);
    for (const std::size_t to : { half, data.size() }) {
        for (std::size_t at = reader.read.size(); at < to; at = reader.read.size()) {
            const std::size_t end
                = search.Cut(padded.data(), kWindow + 1, at, to, c.likeness, c.layout, block);
            ASSERT_GT(end, at);
            ASSERT_NO_FATAL_FAILURE(reader.Read(block));
            ASSERT_EQ(reader.read.size(), end);
        }
    }
    EXPECT_TRUE(reader.read == data);
    EXPECT_GE(reader.matched, c.leastMatched);
}

INSTANTIATE_TEST_SUITE_P(Png, PngSearch, testing::ValuesIn(kCutCases), tests::kByName);

// Where nearly all lies in runs, no byte may get a code that it does not need.
TEST(PngSearch, CountsFewLiteralsOneByOne)
{
    constexpr std::size_t kEvery = 100, kCount = 400;
    Data data(kEvery * kCount + 64);
    for (std::size_t i = 0; i < kCount; ++i)
        data[i * kEvery] = 7;
    Search search(kThorough);
    Block block;
    ASSERT_EQ(
        search.Cut(data.data(), kWindow + 1, 0, kEvery * kCount, Likeness::Residues, { 1, 2001 }, block),
        kEvery * kCount);
    for (unsigned byte = 0; byte < 256; ++byte)
        EXPECT_EQ(block.literals[byte], byte == 0 || byte == 7 ? kCount : 0) << "byte " << byte;
}

// ---- Palettes

namespace {

// Pixel `i` of those that are to get a place each.
using Shade = Pixel (*)(Pixel i);

struct PaletteCase {
    std::string_view name;
    Shade shade;
};

const PaletteCase kPaletteCases[] = {
    { "Greys", [](Pixel i) { return 0xFF00'0000 | i * 0x010101; } }, { "LowBits", [](Pixel i) { return i; } },
    { "HighBits", [](Pixel i) { return i << 24; } }, // all of whose products may end alike
    { "Steps", [](Pixel i) { return i * 0x0101'0101; } },
    { "Scattered", [](Pixel i) { return (i + 1) * 0x9E37'79B1; } },
    { "AllInOneSlotAtFirst", [](Pixel i) { return i * 0xE8B2'F51; } }, // the first factor's inverse
};

void PrintTo(const PaletteCase& row, std::ostream* to)
{
    *to << row.name;
}

std::vector<Pixel> Shades(Shade shade, Pixel count)
{
    std::vector<Pixel> pixels;
    for (Pixel i = 0; i < count; ++i)
        pixels.push_back(shade(i));
    return pixels;
}

const std::uint8_t* BytesOf(const std::vector<Pixel>& pixels)
{
    return reinterpret_cast<const std::uint8_t*>(pixels.data());
}

class PngPalette : public testing::TestWithParam<PaletteCase> { };

} // namespace

TEST_P(PngPalette, FindsEachOf256PixelsAndNoMore)
{
    std::vector<Pixel> pixels = Shades(GetParam().shade, 256);
    PaletteIndex palette;
    for (int again = 0; again < 3; ++again)
        palette.Add(BytesOf(pixels), pixels.size());
    ASSERT_FALSE(palette.Full());
    ASSERT_EQ(palette.Size(), 256U);
    palette.PutTransparentFirst();
    std::array<std::uint8_t, 256> indices {};
    palette.Write(BytesOf(pixels), indices.data(), pixels.size());
    for (std::size_t i = 0; i < pixels.size(); ++i)
        EXPECT_EQ(palette.Pixels()[indices[i]], pixels[i]) << i;
    EXPECT_TRUE(std::is_partitioned(palette.Pixels().begin(), palette.Pixels().end(),
        [](Pixel pixel) { return Channels(pixel)[3] != 255; }));
    pixels.push_back(0x1234'5678);
    palette.Add(BytesOf(pixels), pixels.size());
    EXPECT_TRUE(palette.Full());
}

INSTANTIATE_TEST_SUITE_P(Png, PngPalette, testing::ValuesIn(kPaletteCases), tests::kByName);

// ---- Parts of rows

// What a patch of a picture looks like must be what it looks like within its rows.
TEST(PngRows, PartsAreAsInTheWhole)
{
    constexpr int kWidth = 90, kHeight = 20, kFrom = 7;
    constexpr Columns kPart { 31, 40 };
    imaging::Bitmap picture = imaging::Bitmap::Uninitialised(kWidth, kHeight);
    std::mt19937 draw(5);
    std::generate_n(
        picture.Writable(), picture.Stride() * kHeight, [&] { return static_cast<std::uint8_t>(draw()); });
    const Form form = FormOf(picture);
    StoredRows whole(picture, form, { 0, kWidth }), part(picture, form, kPart, kFrom);
    const std::size_t stride = whole.RowLayout().stride, partStride = part.RowLayout().stride;
    Data all(stride * kHeight + 64), some(partStride * (kHeight - kFrom) + 64);
    EXPECT_EQ(whole.Write(all.data(), kHeight, false), all.data() + stride * kHeight);
    EXPECT_EQ(part.Write(some.data(), kHeight, false), some.data() + partStride * (kHeight - kFrom));
    for (std::size_t y = 0; y < kHeight - kFrom; ++y)
        EXPECT_EQ(std::memcmp(&some[y * partStride + 1], &all[(y + kFrom) * stride + 1 + 4 * kPart.left],
                      4 * kPart.width),
            0)
            << "row " << y;
}
