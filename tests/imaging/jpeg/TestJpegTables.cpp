// The coding tables that the JPEG encoder makes for each picture, held against cjpeg's: the same pixels, in
// hardly more bytes.

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/jpeg/Jpeg.h"
#include "tests/support/Naming.h"
#include "tests/support/Pictures.h"
#include "tests/support/Scratch.h"

using namespace veltrane;
using imaging::Bitmap;
using imaging::kJpeg;
using Bytes = std::vector<std::uint8_t>;

namespace {

struct MemorySink final : imaging::Sink {
    Bytes bytes;
    void Write(imaging::Bytes more) override { bytes.insert(bytes.end(), more.begin(), more.end()); }
};

using Paint = std::uint32_t (*)(int x, int y, std::uint32_t drawn); // 0xBBGGRR

std::uint32_t Flat(int, int, std::uint32_t)
{
    return 0x3060A0;
}

std::uint32_t Noise(int, int, std::uint32_t drawn)
{
    return drawn;
}

std::uint32_t GreyNoise(int, int, std::uint32_t drawn)
{
    return (drawn & 0xFF) * 0x010101;
}

// Black and white blocks in turns: the largest steps from one mean to the next.
std::uint32_t Blocks(int x, int y, std::uint32_t)
{
    return ((x ^ y) & 8) != 0 ? 0xFFFFFF : 0;
}

// The same with every step amid a block of the code: the largest coefficients.
std::uint32_t SteppedBlocks(int x, int y, std::uint32_t drawn)
{
    return Blocks(x + 4, y + 4, drawn);
}

// Slopes, edges and a little noise, as in photographs.
std::uint32_t Scene(int x, int y, std::uint32_t drawn)
{
    const auto level = static_cast<std::uint32_t>(x % 350 / 3 + ((x / 97 + y / 61) % 5) * 20);
    return (level + drawn % 24) * 0x010101 + (static_cast<std::uint32_t>(y / 16) % 64 << 8);
}

// What the last rows ask for, no sample shows.
std::uint32_t NoiseBelow(int x, int y, std::uint32_t drawn)
{
    return y < 496 ? Flat(x, y, drawn) : drawn;
}

Bitmap Painted(int width, int height, Paint paint)
{
    Bitmap picture = Bitmap::Uninitialised(width, height);
    std::uint8_t* out = picture.Writable();
    std::minstd_rand draw(7);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::uint32_t pixel = paint(x, y, static_cast<std::uint32_t>(draw()) >> 4);
            for (int shift = 0; shift < 24; shift += 8)
                *out++ = static_cast<std::uint8_t>(pixel >> shift);
            *out++ = 255;
        }
    }
    return picture;
}

void WritePpm(const Bitmap& picture, const std::string& path)
{
    std::ofstream file(path, std::ios::binary);
    file << "P6 " << picture.Width() << ' ' << picture.Height() << " 255\n";
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x)
            file.write(reinterpret_cast<const char*>(picture.Row(y) + 4 * x), 3);
    }
}

struct Case {
    std::string_view name;
    int width, height;
    Paint paint;
    int quality;
    double share; // the most bytes, of what the best tables need
};

Bytes WrittenByCjpeg(const Case& row, const Bitmap& picture, bool grey)
{
    const tests::Scratch folder;
    WritePpm(picture, folder.Path("in.ppm"));
    const std::string command = std::string("cjpeg -baseline -optimize -quality ")
        + std::to_string(row.quality) + (row.quality < 90 ? " -sample 2x2" : " -sample 1x1")
        + (grey ? " -grayscale" : "") + " -outfile " + folder.Path("out.jpg") + " " + folder.Path("in.ppm");
    if (std::system(command.c_str()) != 0)
        return {};
    std::ifstream file(folder.Path("out.jpg"), std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

// More than the 2^18 pixels up to which no sample is taken, where no other size is the point.
constexpr Case kCases[] = {
    { "Scene", 1300, 900, Scene, 70, 1.005 },
    { "FullColour", 800, 600, Scene, 92, 1.01 },
    { "NoiseAtBest", 700, 500, Noise, 100, 1.01 },
    { "LargestCoefficients", 700, 500, SteppedBlocks, 100, 1.05 },
    { "NoiseAtWorst", 700, 500, Noise, 0, 1.15 },
    { "Grey", 700, 500, GreyNoise, 80, 1.01 },
    { "LargestSteps", 701, 503, Blocks, 100, 1.01 }, // and no whole units at the ends
    { "Flat", 700, 500, Flat, 70, 1.15 },
    { "WhatNoSampleShows", 640, 512, NoiseBelow, 100, 2.0 }, // codes for what was not counted
    { "NarrowerThanAPiece", 40, 9000, Scene, 70, 1.02 },
    { "WideAndLow", 32767, 16, Scene, 70, 1.01 },
    { "LowerThanAUnit", 32767, 9, Scene, 70, 1 }, // no piece fits
    { "NarrowerThanAUnit", 9, 32767, Scene, 70, 1 },
    { "Small", 65, 33, Scene, 70, 1 },
    { "OnePixel", 1, 1, Noise, 70, 1 },
};

class JpegTables : public testing::TestWithParam<Case> { };

TEST_P(JpegTables, SamePixelsInHardlyMoreBytes)
{
    const Case& row = GetParam();
    const Bitmap picture = Painted(row.width, row.height, row.paint);
    MemorySink ours;
    kJpeg.encode(picture, row.quality, ours);
    const Bytes theirs = WrittenByCjpeg(row, picture, row.paint == GreyNoise);
    ASSERT_FALSE(theirs.empty());
    const auto read = [](const Bytes& file) { return kJpeg.decode(file, imaging::Limits()); };
    EXPECT_EQ(tests::Difference(read(ours.bytes), read(theirs)), 0);
    constexpr double kProfile = 500;
    EXPECT_LE(
        static_cast<double>(ours.bytes.size()), row.share * static_cast<double>(theirs.size()) + kProfile);
}

INSTANTIATE_TEST_SUITE_P(Jpeg, JpegTables, testing::ValuesIn(kCases), tests::kByName);

} // namespace
