#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/bits/Processor.h"
#include "imaging/pixels/Scaler.h"
#include "tests/support/Naming.h"
#include "tests/support/Pictures.h"

using namespace veltrane;
using namespace veltrane::imaging;

namespace {

enum class Alpha { Opaque, OpaqueUnsaid, Mixed };

struct Row {
    const char* name;
    int width, height;
    SourceArea area;
    int targetWidth, targetHeight;
    Alpha alpha = Alpha::Opaque;
};

Bitmap Noise(const Row& row)
{
    Bitmap picture = Bitmap::Uninitialised(row.width, row.height);
    std::mt19937 random(7);
    std::uint8_t* const pixels = picture.Writable();
    for (std::size_t i = 0; i < picture.Stride() * static_cast<std::size_t>(row.height); ++i)
        pixels[i] = i % 4 == 3 && row.alpha != Alpha::Mixed ? 255 : static_cast<std::uint8_t>(random());
    picture.Opaque(row.alpha == Alpha::Opaque);
    return picture;
}

// A picture like a photo: soft slopes, a hard edge, and the noise of a sensor.
Bitmap Photo(int width, int height)
{
    Bitmap picture = Bitmap::Uninitialised(width, height);
    std::mt19937 random(11);
    std::uint8_t* pixel = picture.Writable();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, pixel += 4) {
            const int light = x * x / width / 4 + (x + 2 * y > width ? 90 : 0);
            for (int c = 0; c < 3; ++c)
                pixel[c]
                    = static_cast<std::uint8_t>(light + c * y / height * 20 + static_cast<int>(random() % 8));
            pixel[3] = 255;
        }
    }
    picture.Opaque(true);
    return picture;
}

// The length that [from, to) shares with pixel `at`.
double Shared(double from, double to, int at)
{
    return std::max(0.0, std::min(to, at + 1.0) - std::max(from, static_cast<double>(at)));
}

// The average of what one target pixel covers, each source pixel asked for its share.
std::array<double, 4> Average(const Bitmap& source, const SourceArea& covered)
{
    std::array<double, 4> sum {};
    const int bottom = std::min(source.Height(), static_cast<int>(covered.y + covered.height) + 2);
    const int right = std::min(source.Width(), static_cast<int>(covered.x + covered.width) + 2);
    for (int y = std::max(0, static_cast<int>(covered.y) - 1); y < bottom; ++y) {
        const double down = Shared(covered.y, covered.y + covered.height, y);
        for (int x = std::max(0, static_cast<int>(covered.x) - 1); x < right; ++x) {
            const double share = down * Shared(covered.x, covered.x + covered.width, x);
            const std::uint8_t* const pixel = source.Row(y) + x * 4;
            for (std::size_t c = 0; c < 3; ++c)
                sum[c] += share * pixel[c] * pixel[3] / 255.0;
            sum[3] += share * pixel[3];
        }
    }
    for (double& channel : sum)
        channel /= covered.width * covered.height;
    return sum;
}

class Scaler : public testing::TestWithParam<Row> { };

void ExpectExactAverage(const Row& row)
{
    const Bitmap source = Noise(row);
    // Two bytes more to a row than it holds, which must stay as they were.
    const std::size_t stride = static_cast<std::size_t>(row.targetWidth) * 4 + 2;
    std::vector<std::uint8_t> pixels(stride * static_cast<std::size_t>(row.targetHeight), 0xA5);
    ScaleByArea(source, row.area, { pixels.data(), row.targetWidth, row.targetHeight, stride });

    constexpr double kTolerance = 0.5 + 1 / 64.0; // rounding, and the precision of the sums
    const double width = row.area.width / row.targetWidth;
    const double height = row.area.height / row.targetHeight;
    for (int y = 0; y < row.targetHeight; ++y) {
        const std::uint8_t* const out = pixels.data() + static_cast<std::size_t>(y) * stride;
        for (int x = 0; x < row.targetWidth; ++x) {
            const auto exact
                = Average(source, { row.area.x + x * width, row.area.y + y * height, width, height });
            for (std::size_t c = 0; c < 4; ++c)
                ASSERT_NEAR(out[static_cast<std::size_t>(x) * 4 + c], exact[c], kTolerance)
                    << "at " << x << ", " << y << " channel " << c;
        }
        EXPECT_EQ(out[stride - 2], 0xA5);
        EXPECT_EQ(out[stride - 1], 0xA5);
    }
}

constexpr Row kRows[] = {
    { "whole_ratio", 12, 8, { 0, 0, 12, 8 }, 3, 4 },
    { "odd_ratio", 37, 23, { 0, 0, 37, 23 }, 7, 5 },
    { "barely_smaller", 20, 20, { 0, 0, 20, 20 }, 19, 19 },
    { "same_size", 9, 9, { 0, 0, 9, 9 }, 9, 9 },
    { "larger", 5, 3, { 0, 0, 5, 3 }, 13, 7 },
    { "wide_and_flat", 50, 4, { 0, 0, 50, 4 }, 8, 9 },
    { "one_pixel_result", 31, 17, { 0, 0, 31, 17 }, 1, 1 },
    { "one_pixel_source", 1, 1, { 0, 0, 1, 1 }, 4, 2 },
    { "part_on_pixel_edges", 30, 20, { 3, 5, 11, 7 }, 4, 3 },
    { "part_inside_pixels", 30, 20, { 3.3, 5.6, 11.9, 7.2 }, 4, 3 },
    { "part_at_the_far_corner", 30, 20, { 19.5, 12.25, 10.5, 7.75 }, 3, 3 },
    { "rows_beyond_a_16_bit_sum", 3, 1200, { 0, 0, 3, 1200 }, 1, 2 },
    { "rows_of_many_groups_and_edges", 5, 100, { 0, 0.5, 5, 99 }, 2, 3 },
    { "rows_of_one_group", 5, 32, { 0, 0, 5, 32 }, 2, 2 },
    { "rows_of_one_group_and_one", 5, 34, { 0, 0, 5, 34 }, 2, 2 },
    { "much_higher", 3, 2, { 0, 0, 3, 2 }, 3, 900 },
    { "columns_beyond_a_16_bit_sum", 20000, 3, { 0, 0, 20000, 3 }, 2, 1 },
    { "line_of_columns_and_one", 17, 40, { 0, 0, 17, 40 }, 3, 2 },
    { "columns_beyond_a_16_bit_sum_mixed", 20000, 3, { 0, 0, 20000, 3 }, 2, 1, Alpha::Mixed },
    { "narrower_than_a_line_mixed", 11, 40, { 0, 0, 11, 40 }, 3, 2, Alpha::Mixed },
    { "much_higher_mixed", 3, 2, { 0, 0, 3, 2 }, 3, 900, Alpha::Mixed },
    { "mixed_alpha", 41, 29, { 0, 0, 41, 29 }, 6, 5, Alpha::Mixed },
    { "mixed_alpha_part", 41, 29, { 1.5, 2.5, 30, 20 }, 6, 5, Alpha::Mixed },
    { "opaque_unsaid", 41, 29, { 0, 0, 41, 29 }, 6, 5, Alpha::OpaqueUnsaid },
    { "small_step", 64, 48, { 0, 0, 64, 48 }, 45, 34 },
    { "small_step_mixed", 64, 48, { 0, 0, 64, 48 }, 46, 34, Alpha::Mixed },
    { "small_step_opaque_unsaid", 64, 48, { 0, 0, 64, 48 }, 46, 34, Alpha::OpaqueUnsaid },
    { "small_step_narrower_than_a_vector_mixed", 3, 5, { 0, 0, 3, 5 }, 2, 3, Alpha::Mixed },
    { "largest_small_step", 39, 47, { 0, 0, 39, 47 }, 10, 12 },
    { "largest_small_step_mixed", 39, 47, { 0.4, 0.3, 38.5, 46.6 }, 10, 12, Alpha::Mixed },
    { "small_step_across_and_large_down", 30, 60, { 0, 0, 30, 60 }, 12, 7 },
};

} // namespace

TEST_P(Scaler, IsTheExactAverage)
{
    ExpectExactAverage(GetParam());
}

TEST_P(Scaler, IsTheExactAverageOnAnOlderProcessor)
{
    const imaging::OldProcessor old;
    ExpectExactAverage(GetParam());
}

// Of so few pixels that the same picture can be kept as indices: their rows are made on the way.
TEST_P(Scaler, IsTheSameOfIndices)
{
    const Row& row = GetParam();
    Bitmap direct = Noise(row);
    std::uint8_t* const pixels = direct.Writable();
    for (std::size_t i = 0; i < direct.Stride() * static_cast<std::size_t>(row.height); ++i)
        pixels[i] = static_cast<std::uint8_t>(pixels[i] | (i % 4 == 3 ? 0x7F : 0xDB));
    const std::optional<Bitmap> kept = tests::KeptAsIndices(direct);
    ASSERT_TRUE(kept);
    const std::size_t stride = static_cast<std::size_t>(row.targetWidth) * 4;
    std::vector<std::uint8_t> expected(stride * static_cast<std::size_t>(row.targetHeight)), made = expected;
    ScaleByArea(direct, row.area, { expected.data(), row.targetWidth, row.targetHeight, stride });
    ScaleByArea(*kept, row.area, { made.data(), row.targetWidth, row.targetHeight, stride });
    EXPECT_EQ(made, expected);
}

INSTANTIATE_TEST_SUITE_P(Areas, Scaler, testing::ValuesIn(kRows), tests::kByName);

std::vector<std::uint8_t> Shown(const Bitmap& picture, int width, int height)
{
    const auto stride = static_cast<std::size_t>(width) * 4;
    std::vector<std::uint8_t> shown(stride * static_cast<std::size_t>(height));
    ScaleByArea(picture,
        { 0, 0, static_cast<double>(picture.Width()), static_cast<double>(picture.Height()) },
        { shown.data(), width, height, stride });
    return shown;
}

// What the colours of a photo's preview are off by.
struct Errors {
    double mean = 0;
    double decibels = 0; // the signal over the errors; rounding to bytes alone leaves 58.9
};

Errors ErrorsOf(const Bitmap& photo, int shownWidth, int shownHeight)
{
    const std::vector<std::uint8_t> shown = Shown(photo, shownWidth, shownHeight);
    const double width = static_cast<double>(photo.Width()) / shownWidth;
    const double height = static_cast<double>(photo.Height()) / shownHeight;
    double sum = 0, squares = 0;
    const std::uint8_t* pixel = shown.data();
    for (int y = 0; y < shownHeight; ++y) {
        for (int x = 0; x < shownWidth; ++x, pixel += 4) {
            const auto exact = Average(photo, { x * width, y * height, width, height });
            for (std::size_t c = 0; c < 3; ++c) {
                sum += pixel[c] - exact[c];
                squares += (pixel[c] - exact[c]) * (pixel[c] - exact[c]);
            }
        }
    }
    const double count = 3.0 * shownWidth * shownHeight;
    return { sum / count, 10 * std::log10(255 * 255 / (squares / count)) };
}

TEST(Scaler, IsNearerToThePhotoThanBytesCanTell)
{
    EXPECT_GT(ErrorsOf(Photo(268, 198), 23, 17).decibels, 58.5);
    EXPECT_GT(ErrorsOf(Photo(268, 198), 191, 141).decibels, 58.5);
}

// Shares are cut off to 256ths, half of one too low on average: of three columns and three rows that adds up.
TEST(Scaler, IsNoDarkerThanThePhoto)
{
    EXPECT_NEAR(ErrorsOf(Photo(640, 480), 457, 343).mean, 0, 1 / 512.0);
}

TEST(Scaler, TakesAnOpaquePictureThatDoesNotSaySoForTheSame)
{
    const Bitmap said = Photo(268, 198);
    Bitmap unsaid = said;
    unsaid.Opaque(false);
    EXPECT_EQ(Shown(unsaid, 191, 141), Shown(said, 191, 141));
}

// Sums that carry too much wrap round to black, those that lose too much show as grey.
TEST(Scaler, KeepsWhiteWhite)
{
    constexpr int kShown = 12;
    for (int side = 1; side <= 5 * kShown; ++side) {
        Bitmap white = Bitmap::Uninitialised(side, side);
        std::fill_n(white.Writable(), white.Stride() * static_cast<std::size_t>(side), 255);
        for (const bool opaque : { true, false }) {
            white.Opaque(opaque);
            const std::vector<std::uint8_t> shown = Shown(white, kShown, kShown);
            EXPECT_EQ(std::ranges::count(shown, 255), std::ssize(shown)) << side << ' ' << opaque;
        }
    }
}
