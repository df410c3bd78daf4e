#include <algorithm>
#include <array>
#include <cstdint>

#include <gtest/gtest.h>

#include "platform/pictures/Graphics.h"
#include "platform/pictures/Picture.h"
#include "tests/support/Naming.h"

using namespace veltrane;

namespace {

using Pixel = std::array<std::uint8_t, 4>;

constexpr Pixel kNone { 0, 0, 0, 0 };

constexpr Pixel Gray(std::uint8_t light)
{
    return { light, light, light, 255 };
}

// Two rows of four pixels.
constexpr std::array<Pixel, 8> kOpaque { { Gray(0), Gray(100), Gray(200), Gray(60), Gray(40), Gray(60),
    Gray(100), Gray(40) } };
constexpr std::array<Pixel, 8> kMixed { { Gray(90), { 255, 255, 255, 0 }, kNone, kNone, Gray(90),
    { 255, 255, 255, 0 }, kNone, kNone } };

struct Row {
    const char* name;
    const std::array<Pixel, 8>& source;
    double x, y, width, height;
    double sourceX, sourceY, sourceWidth, sourceHeight;
    std::array<Pixel, 3> expected;
};

class DrawPicture : public testing::TestWithParam<Row> { };

const Row kRows[] = {
    { "smaller_is_the_average", kOpaque, 1, 0, 2, 1, 0, 0, 4, 2, { kNone, Gray(50), Gray(100) } },
    { "smaller_in_one_direction", kOpaque, 0, 0, 2, 1, 0, 0, 4, 1, { Gray(50), Gray(130), kNone } },
    { "part_made_smaller", kOpaque, 0, 0, 1, 1, 2, 0, 2, 2, { Gray(100), kNone, kNone } },
    { "smaller_and_cut_at_the_edge", kOpaque, -1, 0, 2, 1, 0, 0, 4, 2, { Gray(100), kNone, kNone } },
    { "smaller_counts_colours_by_alpha", kMixed, 0, 0, 1, 1, 0, 0, 3, 2,
        { Pixel { 90, 90, 90, 85 }, kNone, kNone } },
    { "smaller_beyond_the_source", kOpaque, 0, 0, 1, 1, -2, 0, 4, 1, { Gray(0), kNone, kNone } },
    { "one_to_one_is_exact", kOpaque, 0, 0, 3, 1, 1, 1, 3, 1, { Gray(60), Gray(100), Gray(40) } },
    { "larger_takes_the_nearest", kOpaque, 0, 0, 3, 1, 2, 0, 1, 1, { Gray(200), Gray(200), Gray(200) } },
};

} // namespace

TEST_P(DrawPicture, FillsTheRow)
{
    const Row& row = GetParam();
    const auto source = New<Picture>(4, 2);
    std::uint8_t* out = source->Pixels().Writable();
    for (const Pixel& pixel : row.source)
        out = std::copy(pixel.begin(), pixel.end(), out);
    source->Pixels().Opaque(&row.source == &kOpaque);

    const auto target = New<Picture>(3, 1);
    target->Graphics()->DrawPicture(source, row.x, row.y, row.width, row.height, row.sourceX, row.sourceY,
        row.sourceWidth, row.sourceHeight);
    const std::uint8_t* at = target->Pixels().Row(0);
    for (std::size_t i = 0; i < row.expected.size(); ++i, at += 4)
        EXPECT_EQ((Pixel { at[0], at[1], at[2], at[3] }), row.expected[i]) << "pixel " << i;
}

INSTANTIATE_TEST_SUITE_P(Draws, DrawPicture, testing::ValuesIn(kRows), tests::kByName);
