#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/bits/Processor.h"
#include "imaging/png/Png.h"
#include "tests/support/Naming.h"
#include "tests/support/Pictures.h"

using namespace veltrane;
using imaging::Bitmap;
using imaging::Bytes;
using imaging::kPng;

namespace {

using Colour = std::array<std::uint8_t, 4>;

class MemorySink final : public imaging::Sink {
public:
    void Write(Bytes more) override
    {
        largest = std::max(largest, more.size());
        bytes.insert(bytes.end(), more.begin(), more.end());
    }
    std::vector<std::uint8_t> bytes;
    std::size_t largest = 0;
};

// Pixel (x, y) from a number drawn for it.
using Paint = Colour (*)(unsigned x, unsigned y, unsigned drawn);

Bitmap Painted(int width, int height, Paint paint)
{
    Bitmap picture = Bitmap::Uninitialised(width, height);
    std::mt19937 draw(7);
    std::uint8_t* at = picture.Writable();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, at += 4) {
            const Colour colour
                = paint(static_cast<unsigned>(x), static_cast<unsigned>(y), static_cast<unsigned>(draw()));
            std::memcpy(at, colour.data(), 4);
        }
    }
    return picture;
}

constexpr std::uint8_t Byte(unsigned value)
{
    return static_cast<std::uint8_t>(value);
}
constexpr Colour Grey(unsigned value, unsigned alpha = 255)
{
    return { Byte(value), Byte(value), Byte(value), Byte(alpha) };
}

struct EncodeCase {
    std::string_view name;
    int width, height;
    Paint paint;
    int colourType, depth; // as the header is to say; PNG 3rd ed., 11.2.1
    double most; // bytes a pixel beyond 1 KiB
};

constexpr Paint kNoise = [](unsigned, unsigned, unsigned n) {
    return Colour { Byte(n), Byte(n >> 8), Byte(n >> 16), 255 };
};
constexpr Paint kNoiseAlpha = [](unsigned, unsigned, unsigned n) {
    return Colour { Byte(n), Byte(n >> 8), Byte(n >> 16), Byte(n >> 24) };
};
// A photograph as compressors see one: slopes, and noise that covers them.
constexpr Paint kPhoto = [](unsigned x, unsigned y, unsigned n) {
    return Colour { Byte(x / 2 + n % 4), Byte(y / 2 + n / 4 % 4), Byte((x + y) / 4 + n / 16 % 4), 255 };
};
// Words on paper: repeats in both directions, sharp edges, more colours than a palette holds.
constexpr Paint kText = [](unsigned x, unsigned y, unsigned) {
    const bool ink = y % 16 < 10 && (x * 7 / (1 + x / 64 % 3) + y % 16 * x % 11) % 8 < 3 && x % 64 < 50;
    return x % 64 == 63 ? Colour { Byte(y), Byte(x / 64), 200, 255 } : ink ? Grey(20) : Grey(255);
};
constexpr Paint kSlope = [](unsigned x, unsigned y, unsigned) {
    return Colour { Byte(x / 3), Byte(y / 5), Byte(x / 7), 255 };
};
// Tiles that come again and again.
constexpr Paint kTiles = [](unsigned x, unsigned y, unsigned) {
    const unsigned u = x % 160, v = y % 7;
    return Colour { Byte(60 + (u * u / 64 + u * v * 5) / 40), Byte(90 + (u * u / 50 + 40 * v) / 30),
        Byte(30 + u * v / 9), 255 };
};
// The same on a slope: only what prediction leaves comes again.
constexpr Paint kTilesOnSlope = [](unsigned x, unsigned y, unsigned n) {
    Colour c = kTiles(x, y * y, n);
    c[0] = Byte(c[0] + x / 16);
    c[1] = Byte(c[1] + x / 11 + y / 9);
    c[2] = Byte(c[2] + y / 4);
    return c;
};

// A photograph without colour, but for a touch that keeps it from being grey: pixels come again here and
// there.
constexpr Paint kGrain = [](unsigned x, unsigned y, unsigned n) {
    Colour c = Grey(x / 8 + y / 8 + n % 12);
    c[2] = Byte(c[2] + (n / 256 % 32 == 0 ? 1U : 0U));
    return c;
};

const EncodeCase kCases[] = {
    { "OnePixel", 1, 1,
        [](unsigned, unsigned, unsigned) {
            return Colour { 1, 2, 3, 255 };
        },
        2, 8, 0 },
    { "OneTransparentPixel", 1, 1,
        [](unsigned, unsigned, unsigned) {
            return Colour { 1, 2, 3, 0 };
        },
        6, 8, 0 },
    { "Noise", 300, 200, kNoise, 2, 8, 3.01 },
    { "NoiseWithAlpha", 300, 200, kNoiseAlpha, 6, 8, 4.01 },
    { "NoiseOfGrey", 300, 200, [](unsigned, unsigned, unsigned n) { return Grey(n); }, 0, 8, 1.01 },
    { "GreyWithAlpha", 300, 200, [](unsigned x, unsigned, unsigned n) { return Grey(n >> 8, x); }, 4, 8,
        1.6 },
    { "Photo", 700, 500, kPhoto, 2, 8, 1.1 },
    { "PhotoWithAlpha", 700, 500,
        [](unsigned x, unsigned y, unsigned n) {
            Colour c = kPhoto(x, y, n);
            c[3] = Byte(y);
            return c;
        },
        6, 8, 1.3 },
    { "Grain", 900, 700, kGrain, 2, 8, 1.0 },
    { "GrainWithAlpha", 900, 700,
        [](unsigned x, unsigned y, unsigned n) {
            Colour c = kGrain(x, y, n);
            c[3] = Byte(y / 4);
            return c;
        },
        6, 8, 1.08 },
    { "GrainBelowASky", 640, 480,
        [](unsigned x, unsigned y, unsigned n) { return y < 60 ? kPhoto(x, y, n) : kGrain(x, y, n); }, 2, 8,
        1.05 },
    { "Text", 700, 500, kText, 2, 8, 0.165 },
    { "Tiles", 1100, 500, kTiles, 2, 8, 0.02 },
    { "TilesOnSlope", 1100, 500, kTilesOnSlope, 2, 8, 0.18 },
    { "Slope", 700, 500, kSlope, 2, 8, 0.02 },
    { "Flat", 900, 900,
        [](unsigned, unsigned, unsigned) {
            return Colour { 9, 99, 199, 255 };
        },
        3, 1, 0.001 },
    { "FlatGrey", 900, 900, [](unsigned, unsigned, unsigned) { return Grey(77); }, 3, 1, 0.001 },
    { "FlatTransparent", 900, 900,
        [](unsigned, unsigned, unsigned) {
            return Colour { 9, 99, 199, 0 };
        },
        3, 1, 0.001 },
    { "BlackAndWhite", 131, 97, [](unsigned, unsigned, unsigned n) { return Grey(n % 2 * 255); }, 0, 1,
        0.14 },
    { "FourGreys", 131, 97, [](unsigned, unsigned, unsigned n) { return Grey(n % 4 * 85); }, 0, 2, 0.27 },
    { "SixteenGreys", 131, 97, [](unsigned, unsigned, unsigned n) { return Grey(n % 16 * 17); }, 0, 4, 0.52 },
    { "SixteenOtherGreys", 131, 97, [](unsigned, unsigned, unsigned n) { return Grey(n % 16 * 16 + 1); }, 3,
        4, 0.52 },
    { "TwoColours", 131, 97,
        [](unsigned, unsigned, unsigned n) {
            return Colour { Byte(n % 2), 50, 60, 255 };
        },
        3, 1, 0.14 },
    { "ThreeColours", 131, 97,
        [](unsigned, unsigned, unsigned n) {
            return Colour { Byte(n % 3), 50, 60, 255 };
        },
        3, 2, 0.27 },
    { "SixteenColours", 131, 97,
        [](unsigned, unsigned, unsigned n) {
            return Colour { Byte(n % 16), 50, 60, 255 };
        },
        3, 4, 0.52 },
    { "AllOfAPalette", 331, 297,
        [](unsigned, unsigned, unsigned n) {
            return Colour { Byte(n), 50, 60, Byte(n * 7) };
        },
        3, 8, 1.02 },
    { "OneTooManyForAPalette", 331, 297,
        [](unsigned x, unsigned y, unsigned n) {
            return x + y == 0 ? Colour { 1, 1, 1, 255 } : Colour { Byte(n), 50, 60, 255 };
        },
        2, 8, 1.6 },
    { "ColoursOfTheInvisible", 331, 297,
        [](unsigned, unsigned, unsigned n) {
            return Colour { Byte(n), Byte(n >> 8), 60, 0 };
        },
        6, 8, 2.6 },
    { "Widest", 32767, 2, kPhoto, 2, 8, 1.1 },
    { "Tallest", 2, 32767, kPhoto, 2, 8, 1.6 },
    { "TallestOfOneColumn", 1, 32767, kNoiseAlpha, 6, 8, 5.01 },
    { "LastOfLongRun", 8, 40000 / 8,
        [](unsigned x, unsigned y, unsigned) { return Grey(x + y == 5006 ? 1 : 0, x == 7 ? 254 : 255); }, 3,
        2, 0.05 },
};

void PrintTo(const EncodeCase& row, std::ostream* to)
{
    *to << row.name;
}

class PngEncode : public testing::TestWithParam<EncodeCase> { };

void ExpectSame(const Bitmap& got, const Bitmap& expected)
{
    ASSERT_EQ(got.Width(), expected.Width());
    ASSERT_EQ(got.Height(), expected.Height());
    for (int y = 0; y < got.Height(); ++y)
        ASSERT_EQ(std::memcmp(got.Row(y), expected.Row(y), got.Stride()), 0) << "row " << y;
}

std::set<std::string> ChunkTypes(const std::vector<std::uint8_t>& file)
{
    std::set<std::string> types;
    for (std::size_t at = 8; at + 12 <= file.size();) {
        const std::size_t length = std::size_t { file[at] } << 24 | std::size_t { file[at + 1] } << 16
            | std::size_t { file[at + 2] } << 8 | file[at + 3];
        types.emplace(file.begin() + static_cast<std::ptrdiff_t>(at + 4),
            file.begin() + static_cast<std::ptrdiff_t>(at + 8));
        at += 12 + length;
    }
    return types;
}

} // namespace

TEST_P(PngEncode, IsExactAndSmallInItsForm)
{
    const EncodeCase& c = GetParam();
    const Bitmap picture = Painted(c.width, c.height, c.paint);
    MemorySink file;
    kPng.encode(picture, -1, file);
    ExpectSame(kPng.decode(file.bytes, imaging::Limits {}), picture);
    EXPECT_EQ(file.bytes[24], c.depth);
    EXPECT_EQ(file.bytes[25], c.colourType);
    EXPECT_LE(static_cast<double>(file.bytes.size()), c.most * c.width * c.height + 1024);
    EXPECT_LE(file.largest, 600'000U) << "the file is to go out in pieces";
    const std::set<std::string> known { "IHDR", "sRGB", "PLTE", "tRNS", "IDAT", "IEND" };
    for (const std::string& type : ChunkTypes(file.bytes))
        EXPECT_TRUE(known.contains(type)) << type;
    EXPECT_TRUE(ChunkTypes(file.bytes).contains("sRGB"));
}

// The paths for newer processors change nothing but the time.
TEST_P(PngEncode, IsTheSameOnAnOlderProcessor)
{
    const EncodeCase& c = GetParam();
    const Bitmap picture = Painted(c.width, c.height, c.paint);
    MemorySink here, there;
    kPng.encode(picture, -1, here);
    const imaging::OldProcessor old;
    kPng.encode(picture, -1, there);
    EXPECT_TRUE(here.bytes == there.bytes);
    ExpectSame(kPng.decode(here.bytes, imaging::Limits {}), picture);
}

TEST_P(PngEncode, IsTheSameWhenKeptAsIndices)
{
    const EncodeCase& c = GetParam();
    const Bitmap picture = Painted(c.width, c.height, c.paint);
    const std::optional<Bitmap> kept = tests::KeptAsIndices(picture);
    EXPECT_TRUE(kept || c.colourType != 3);
    if (!kept)
        return;
    MemorySink direct, indexed;
    kPng.encode(picture, -1, direct);
    kPng.encode(*kept, -1, indexed);
    EXPECT_TRUE(direct.bytes == indexed.bytes);
}

INSTANTIATE_TEST_SUITE_P(Png, PngEncode, testing::ValuesIn(kCases), tests::kByName);

TEST(PngEncode, HintOfOpacityChangesNothingButTheTime)
{
    Bitmap picture = Painted(300, 200, kPhoto);
    MemorySink without, with;
    kPng.encode(picture, -1, without);
    kPng.encode(Painted(64, 64, kNoiseAlpha), 0, with); // whatever came before leaves no trace
    with.bytes.clear();
    picture.Opaque(true);
    kPng.encode(picture, 100, with);
    EXPECT_EQ(with.bytes, without.bytes);
}

TEST(PngEncode, SwitchesBetweenKindsWithinAPicture)
{
    const Bitmap picture = Painted(400, 1200, [](unsigned x, unsigned y, unsigned n) {
        return y / 300 % 2 == 0 ? kPhoto(x, y, n) : kText(x, y, n);
    });
    MemorySink file;
    kPng.encode(picture, -1, file);
    ExpectSame(kPng.decode(file.bytes, imaging::Limits {}), picture);
}

TEST(PngEncode, PassesOnWhatTheSinkRaises)
{
    struct DiskFull { };
    struct Full final : imaging::Sink {
        void Write(Bytes) override { throw DiskFull(); }
    } sink;
    EXPECT_THROW(kPng.encode(Painted(4, 3, kText), -1, sink), DiskFull);
}
