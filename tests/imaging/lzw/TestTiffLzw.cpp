#include <vector>

#include <gtest/gtest.h>

#include "imaging/lzw/TiffLzw.h"
#include "tests/support/Pictures.h"
#include "tests/support/ReadData.h"

using namespace veltrane;

namespace {

// The one strip begins behind the header; what lies behind it does not matter.
std::vector<std::uint8_t> Packed()
{
    std::vector<std::uint8_t> file = tests::ReadData("tiff/lzw-repeats.tif");
    file.erase(file.begin(), file.begin() + 8);
    return file;
}

} // namespace

// The library would make up for what ours gives up without need.
TEST(TiffLzw, UnpacksLongStringsAndFullTablesByItself)
{
    const imaging::Bitmap expected = tests::Pam("tiff/repeats.pam");
    std::vector<std::uint8_t> bytes(3U * 64 * 48 + imaging::TiffLzw::kSlack);
    const auto wanted = std::span(bytes).first(bytes.size() - imaging::TiffLzw::kSlack);
    imaging::TiffLzw lzw;
    ASSERT_TRUE(lzw.Unpack(Packed(), wanted));
    for (std::size_t i = 0; i < wanted.size(); ++i)
        ASSERT_EQ(wanted[i], expected.Row(0)[i / 3 * 4 + i % 3]) << i;
}

TEST(TiffLzw, EndsWhereAskedAndNotBehind)
{
    std::vector<std::uint8_t> bytes(1000 + imaging::TiffLzw::kSlack + 1, 77);
    imaging::TiffLzw lzw;
    for (std::size_t wanted = 1; wanted < 1000; ++wanted) {
        bytes[wanted + imaging::TiffLzw::kSlack] = 77;
        ASSERT_TRUE(lzw.Unpack(Packed(), std::span(bytes).first(wanted)));
        ASSERT_EQ(bytes[wanted + imaging::TiffLzw::kSlack], 77) << wanted;
    }
}

TEST(TiffLzw, LeavesToTheLibraryWhatIsNotInOrder)
{
    const auto packed = Packed();
    std::vector<std::uint8_t> bytes(3U * 64 * 48 + imaging::TiffLzw::kSlack);
    const auto wanted = std::span(bytes).first(bytes.size() - imaging::TiffLzw::kSlack);
    imaging::TiffLzw lzw;
    EXPECT_FALSE(lzw.Unpack(imaging::Bytes(packed).first(4000), wanted)) << "cut";
    EXPECT_FALSE(lzw.Unpack({}, wanted)) << "none";
    const std::vector<std::uint8_t> notCleared { 0x20, 0x90, 0x48, 0x24 };
    EXPECT_FALSE(lzw.Unpack(notCleared, wanted)) << "no clear code";
    const std::vector<std::uint8_t> tooFar { 0x80, 0x00, 0x60, 0x00 }; // clear, 1, a code not given yet
    EXPECT_FALSE(lzw.Unpack(tooFar, wanted.first(8)));
    const std::vector<std::uint8_t> old { 0x00, 0x01, 0x04, 0x00 };
    EXPECT_FALSE(lzw.Unpack(old, wanted.first(1))) << "the first bit lowest";
}
