#include <gtest/gtest.h>

#include "tests/support/PictFiles.h"

using namespace veltrane;
using namespace veltrane::tests;

namespace {

/// How much darker than the paper an area is, summed over its pixels; the font is the machine's, so the
/// letters' very pixels are not known.
int Ink(const imaging::Bitmap& picture, int left, int top, int right, int bottom)
{
    int ink = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x)
            ink += 255 - picture.Row(y)[4 * x + 1];
    }
    return ink;
}

constexpr int kBaseLine = 30;

TEST(PictText, PiecesStandWhereTheyWerePut)
{
    const imaging::Bitmap picture = DecodePict("text");
    const int firstTwo = Ink(picture, 10, 14, 50, kBaseLine);
    EXPECT_GT(firstTwo, 0) << "no font on this machine?";
    EXPECT_GT(Ink(picture, 10, kBaseLine - 1, 50, kBaseLine), 0) << "letters stand on the base line";
    EXPECT_GT(Ink(picture, 60, 14, 100, kBaseLine), 0) << "moved from the first piece's beginning";
    EXPECT_GT(Ink(picture, 60, 39, 100, 55), 0) << "moved down";
    const int all = Ink(picture, 0, 0, 100, 60);
    EXPECT_EQ(
        all, Ink(picture, 10, 14, 50, 30) + Ink(picture, 60, 14, 100, 30) + Ink(picture, 60, 39, 100, 55));
    EXPECT_EQ(picture.Row(20)[4 * 12], 255) << "red";
}

TEST(PictText, BoldHasMoreInk)
{
    // Green stands for all: both texts are dark in it.
    EXPECT_GT(Ink(DecodePict("text-bold"), 10, 0, 60, 60), Ink(DecodePict("text"), 10, 0, 60, 35) * 11 / 10);
}

TEST(PictText, RatioHalves)
{
    const imaging::Bitmap picture = DecodePict("text-ratio");
    EXPECT_GT(Ink(picture, 10, 22, 30, kBaseLine), 0);
    EXPECT_EQ(Ink(picture, 10, 22, 30, kBaseLine), Ink(picture, 0, 0, 100, 60));
}

TEST(PictText, UnderlineRunsUnderSpaces)
{
    const imaging::Bitmap picture = DecodePict("text-underlined");
    EXPECT_EQ(Ink(picture, 10, kBaseLine + 1, 20, kBaseLine + 2), 10 * 255);
    EXPECT_EQ(Ink(picture, 0, 0, 100, kBaseLine + 1), 0);
}

TEST(PictText, CopyModeLaysPaperUnder)
{
    const imaging::Bitmap picture = DecodePict("text-copied");
    EXPECT_EQ(HexOf(picture.Row(25) + 4 * 12), "ffffff");
    EXPECT_EQ(HexOf(picture.Row(25) + 4 * 8), "0000ff");
    EXPECT_EQ(HexOf(picture.Row(45) + 4 * 12), "0000ff");
}

} // namespace
