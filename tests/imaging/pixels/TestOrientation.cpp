#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/Exif.h"
#include "imaging/pixels/Orientation.h"
#include "tests/support/Naming.h"

using namespace veltrane;
using imaging::Bitmap;
using imaging::Orientation;

namespace {

// A picture of one letter a pixel, rows parted by '/'.
Bitmap Draw(std::string_view rows)
{
    const auto width = static_cast<int>(std::min(rows.find('/'), rows.size()));
    const auto height = static_cast<int>(std::ranges::count(rows, '/')) + 1;
    Bitmap picture = Bitmap::Uninitialised(width, height);
    std::uint8_t* out = picture.Writable();
    for (const char letter : rows) {
        if (letter != '/')
            out = std::fill_n(out, 4, static_cast<std::uint8_t>(letter));
    }
    return picture;
}

std::string Letters(const Bitmap& picture)
{
    std::string rows;
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x)
            rows += static_cast<char>(picture.Row(y)[4 * x + 3]);
        rows += y + 1 < picture.Height() ? "/" : "";
    }
    return rows;
}

// The same upright picture, "abc/def", stored in the eight ways: TIFF 6.0, section 8.
constexpr std::string_view kStored[]
    = { "abc/def", "cba/fed", "fed/cba", "def/abc", "ad/be/cf", "cf/be/ad", "fc/eb/da", "da/eb/fc" };

std::vector<std::uint8_t> Hex(std::string_view digits)
{
    std::vector<std::uint8_t> bytes;
    std::string pair;
    for (const char digit : digits) {
        if (digit != ' ')
            pair += digit;
        if (pair.size() == 2) {
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(pair, nullptr, 16)));
            pair.clear();
        }
    }
    return bytes;
}

struct ExifCase {
    std::string_view name, block;
    int orientation;
};

constexpr ExifCase kExif[] = {
    // order, 42, offset | entries | tag, type, count, value
    { "LittleEndian", "4949 2A00 08000000 0100 1201 0300 01000000 06000000", 6 },
    { "BigEndian", "4D4D 002A 00000008 0001 0112 0003 00000001 00080000", 8 },
    { "SecondEntry", "4D4D 002A 00000008 0002 010F 0002 00000003 41420000 0112 0003 00000001 00030000", 3 },
    { "DirectoryFurtherBack", "4D4D 002A 0000000A FFFF 0001 0112 0003 00000001 00050000", 5 },
    { "NumberAsLong", "4D4D 002A 00000008 0001 0112 0004 00000001 00000007", 7 },
    { "NumberAsByte", "4D4D 002A 00000008 0001 0112 0001 00000001 02000000", 2 },
    { "BrokenBehindTheEntry", "4D4D 002A 00000008 FFFF 0112 0003 00000001 00060000 01", 6 },
    { "Nothing", "", 1 },
    { "NoByteOrder", "4949", 1 },
    { "MixedByteOrder", "4D49 002A 00000008 0001 0112 0003 00000001 00060000", 1 },
    { "NotTiff", "4D4D 002B 00000008 0001 0112 0003 00000001 00060000", 1 },
    { "OffsetBehindTheEnd", "4D4D 002A FFFFFFFF 0001 0112 0003 00000001 00060000", 1 },
    { "CutInTheEntry", "4D4D 002A 00000008 0001 0112 0003 00000001 0006", 1 },
    { "CutInTheDirectory", "4D4D 002A 00000008 0009 010F 0002 00000003 41420000", 1 },
    { "NumberOutOfRange", "4D4D 002A 00000008 0001 0112 0003 00000001 00090000", 1 },
    { "NumberZero", "4D4D 002A 00000008 0001 0112 0003 00000001 00000000", 1 },
    { "HugeNumber", "4D4D 002A 00000008 0001 0112 0004 00000001 00010006", 1 },
    { "ManyNumbers", "4D4D 002A 00000008 0001 0112 0003 00000004 00060000", 1 },
    { "TextForANumber", "4D4D 002A 00000008 0001 0112 0002 00000001 36000000", 1 },
};

class Exif : public testing::TestWithParam<ExifCase> { };

TEST_P(Exif, Orientation)
{
    EXPECT_EQ(static_cast<int>(imaging::ExifOrientation(Hex(GetParam().block))), GetParam().orientation);
}

INSTANTIATE_TEST_SUITE_P(Orientation, Exif, testing::ValuesIn(kExif), tests::kByName);

} // namespace

TEST(Orientation, TurnsUpright)
{
    for (int tag = 1; tag <= 8; ++tag) {
        const Orientation orientation = imaging::OrientationFrom(tag);
        EXPECT_EQ(imaging::SwapsSides(orientation), tag >= 5) << tag;
        EXPECT_EQ(Letters(imaging::Upright(Draw(kStored[tag - 1]), orientation)), "abc/def") << tag;
    }
    EXPECT_EQ(imaging::OrientationFrom(0), Orientation::TopLeft);
    EXPECT_EQ(imaging::OrientationFrom(9), Orientation::TopLeft);
}

TEST(Orientation, KeepsOpaqueAndLeavesCopiesAlone)
{
    for (int tag = 1; tag <= 8; ++tag) {
        Bitmap stored = Draw("ab/cd/ef");
        stored.Opaque(true);
        const Bitmap turned = imaging::Upright(stored, imaging::OrientationFrom(tag));
        EXPECT_TRUE(turned.Opaque()) << tag;
        EXPECT_EQ(Letters(stored), "ab/cd/ef") << tag;
    }
}

// More rows than are taken at once, and no multiple of them.
TEST(Orientation, RowsAsTheyComeGiveTheSamePicture)
{
    constexpr int kWidth = 37, kHeight = 141;
    Bitmap stored = Bitmap::Uninitialised(kWidth, kHeight);
    std::uint8_t* out = stored.Writable();
    for (int i = 0; i < 4 * kWidth * kHeight; ++i)
        out[i] = static_cast<std::uint8_t>(i % 251);
    for (int tag = 1; tag <= 8; ++tag) {
        imaging::UprightRows rows(kWidth, kHeight, imaging::OrientationFrom(tag));
        for (int y = 0; y < kHeight;) {
            const int count = std::min({ 7 + tag, imaging::UprightRows::kAtOnce, kHeight - y });
            const std::size_t bytes = stored.Stride() * static_cast<std::size_t>(count);
            std::copy_n(stored.Row(y), bytes, rows.Next());
            rows.Written(count);
            y += count;
        }
        EXPECT_EQ(Letters(rows.Take()), Letters(imaging::Upright(stored, imaging::OrientationFrom(tag))))
            << tag;
    }
}

TEST(Orientation, EveryPixelOfALargerPictureMoves)
{
    constexpr int kWidth = 37, kHeight = 91;
    Bitmap stored = Bitmap::Uninitialised(kWidth, kHeight);
    std::uint8_t* out = stored.Writable();
    for (int i = 0; i < kWidth * kHeight; ++i, out += 4)
        out[0] = out[1] = out[2] = out[3] = static_cast<std::uint8_t>(i % 251);
    const Bitmap turned = imaging::Upright(stored, Orientation::RightTop);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x)
            ASSERT_EQ(turned.Row(x)[4 * (kHeight - 1 - y)], stored.Row(y)[4 * x]) << x << ' ' << y;
    }
}
