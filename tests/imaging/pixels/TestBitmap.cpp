#include <algorithm>
#include <array>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/pixels/Bitmap.h"
#include "tests/support/Naming.h"
#include "tests/support/Pictures.h"

using namespace veltrane;
using imaging::Bitmap;

namespace {

constexpr int kWidth = 3, kHeight = 2;
constexpr std::size_t kPixels = 6;

std::vector<std::uint8_t> Bytes(const Bitmap& picture)
{
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < picture.Height(); ++y)
        bytes.insert(bytes.end(), picture.Row(y), picture.Row(y) + picture.Stride());
    return bytes;
}

struct CopyCase {
    std::string_view name;
    Bitmap (*make)();
};

const CopyCase kCopies[] = {
    { "Pixels",
        [] {
            Bitmap made = Bitmap::Uninitialised(kWidth, kHeight);
            std::fill_n(made.Writable(), kPixels * Bitmap::kBytesPerPixel, std::uint8_t { 7 });
            return made;
        } },
    { "Blank", [] { return Bitmap::Transparent(kWidth, kHeight); } },
    { "Indices",
        [] {
            Bitmap made = Bitmap::Indexed(kWidth, kHeight, imaging::Palette { 0xFF000001, 0x80000002 });
            std::ranges::copy(std::to_array<std::uint8_t>({ 0, 1, 0, 1, 1, 0 }), made.WritableIndices());
            return made;
        } },
    // the pixels stand beside the indices already, for somebody who wanted a row
    { "IndicesAndPixels",
        [] {
            Bitmap made = kCopies[2].make();
            EXPECT_NE(made.Row(0), nullptr);
            return made;
        } },
};

class Copied : public testing::TestWithParam<CopyCase> { };

} // namespace

TEST_P(Copied, IsItsOwnOnceItIsWritten)
{
    const Bitmap first = GetParam().make();
    Bitmap copy = first;
    const std::vector<std::uint8_t> before = Bytes(first);
    std::vector<std::uint8_t> wanted = before;
    wanted[5] ^= 1;

    copy.Writable()[5] ^= 1;

    EXPECT_EQ(Bytes(first), before);
    EXPECT_EQ(Bytes(copy), wanted);
    EXPECT_EQ(copy.Indices(0), nullptr) << "they tell what it was";
    EXPECT_FALSE(copy.Blank());
}
INSTANTIATE_TEST_SUITE_P(Bitmap, Copied, testing::ValuesIn(kCopies), tests::kByName);

TEST(Bitmap, WritesAnUnsharedPictureOfIndices)
{
    Bitmap picture = kCopies[2].make();
    std::vector<std::uint8_t> wanted = Bytes(picture);
    wanted[8] = 77;
    picture.Writable()[8] = 77;
    EXPECT_EQ(Bytes(picture), wanted);
    EXPECT_EQ(picture.Indices(0), nullptr);
    std::vector<std::uint8_t> row(picture.Stride());
    picture.CopyRow(0, row.data());
    EXPECT_EQ(row[8], 77);
}
