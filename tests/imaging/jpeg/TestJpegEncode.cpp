#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/colour/Colour.h"
#include "imaging/colour/SrgbProfile.h"
#include "imaging/jpeg/Jpeg.h"
#include "tests/support/Naming.h"
#include "tests/support/Pictures.h"
#include "tests/support/Pnm.h"

using namespace veltrane;
using imaging::Bitmap;
using imaging::Bytes;
using imaging::kJpeg;

namespace {

struct Collector final : imaging::Sink {
    std::vector<std::uint8_t> bytes;
    void Write(Bytes more) override { bytes.insert(bytes.end(), more.begin(), more.end()); }
};

struct DiskFull { };

struct Full final : imaging::Sink {
    void Write(Bytes) override { throw DiskFull(); }
};

Bitmap Scene()
{
    const auto scene = tests::ReadPnm("jpeg/scene.ppm");
    Bitmap picture = Bitmap::Uninitialised(scene.width, scene.height);
    std::uint8_t* out = picture.Writable();
    for (std::size_t i = 0; i < scene.rgb.size(); i += 3) {
        out = std::copy_n(scene.rgb.data() + i, 3, out);
        *out++ = 255;
    }
    return picture;
}

Bitmap Filled(int width, int height, std::array<std::uint8_t, 4> rgba)
{
    Bitmap picture = Bitmap::Uninitialised(width, height);
    std::uint8_t* out = picture.Writable();
    for (int i = 0; i < width * height; ++i)
        out = std::copy(rgba.begin(), rgba.end(), out);
    return picture;
}

std::vector<std::uint8_t> Encoded(const Bitmap& picture, int quality)
{
    Collector sink;
    kJpeg.encode(picture, quality, sink);
    return sink.bytes;
}

// The segments of a JPEG up to its pixels, each from its marker on: T.81, B.1.1.
std::vector<Bytes> Segments(const std::vector<std::uint8_t>& file)
{
    std::vector<Bytes> segments;
    for (std::size_t at = 2; at + 4 <= file.size() && file[at + 1] != 0xDA;) {
        const std::size_t size = 2 + static_cast<std::size_t>(file[at + 2] << 8 | file[at + 3]);
        segments.push_back(Bytes(file).subspan(at, size));
        at += size;
    }
    return segments;
}

// The sampling factors of the components of a baseline frame, as digits: "221111" is 4:2:0.
std::string Sampling(const std::vector<std::uint8_t>& file)
{
    std::string digits;
    for (const Bytes segment : Segments(file)) {
        for (std::size_t i = 10; segment[1] == 0xC0 && i + 2 < segment.size(); i += 3) {
            digits += static_cast<char>('0' + (segment[i + 1] >> 4));
            digits += static_cast<char>('0' + (segment[i + 1] & 15));
        }
    }
    return digits;
}

int MeanDifference(const Bitmap& a, const Bitmap& b)
{
    int sum = 0;
    for (int y = 0; y < a.Height(); ++y) {
        for (int i = 0; i < 4 * a.Width(); ++i)
            sum += std::abs(a.Row(y)[i] - b.Row(y)[i]);
    }
    return sum / (4 * a.Width() * a.Height());
}

struct FormCase {
    std::string_view name;
    int quality;
    std::string_view sampling;
};

constexpr FormCase kForms[] = {
    { "WorstIsAPictureStill", 0, "221111" },
    { "HalvedColourBelow90", 89, "221111" },
    { "FullColourFrom90", 90, "111111" },
    { "Best", 100, "111111" },
    { "OwnChoice", -1, "221111" },
    { "AboveTheRange", 200, "111111" },
};

class JpegForm : public testing::TestWithParam<FormCase> { };

TEST_P(JpegForm, HasItsSamplingAndTheScene)
{
    const Bitmap scene = Scene();
    const auto file = Encoded(scene, GetParam().quality);
    EXPECT_EQ(Sampling(file), GetParam().sampling);
    const Bitmap again = kJpeg.decode(file, imaging::Limits());
    EXPECT_LE(MeanDifference(again, scene), GetParam().quality == 0 ? 40 : 4);
}

INSTANTIATE_TEST_SUITE_P(Jpeg, JpegForm, testing::ValuesIn(kForms), tests::kByName);

} // namespace

TEST(JpegEncode, LowerQualityIsSmaller)
{
    const Bitmap scene = Scene();
    EXPECT_LT(Encoded(scene, 0).size(), Encoded(scene, 40).size());
    EXPECT_LT(Encoded(scene, 40).size(), Encoded(scene, 75).size());
    EXPECT_EQ(Encoded(scene, -1), Encoded(scene, 75));
    EXPECT_LT(Encoded(scene, 75).size(), Encoded(scene, 100).size());
}

TEST(JpegEncode, AlphaIsLaidOnWhite)
{
    const Bitmap again = kJpeg.decode(Encoded(Filled(9, 40, { 255, 0, 0, 128 }), 100), imaging::Limits());
    EXPECT_NEAR(again.Row(39)[0], 255, 2);
    EXPECT_NEAR(again.Row(39)[1], 127, 2);
    const Bitmap clear = kJpeg.decode(Encoded(Filled(9, 40, { 255, 0, 0, 0 }), 100), imaging::Limits());
    EXPECT_NEAR(clear.Row(0)[1], 255, 1);
}

TEST(JpegEncode, GreyOnlyWhereExact)
{
    Bitmap picture = Filled(20, 20, { 90, 90, 90, 255 });
    EXPECT_EQ(Sampling(Encoded(picture, 80)), "11");
    EXPECT_NEAR(kJpeg.decode(Encoded(picture, 80), imaging::Limits()).Row(5)[2], 90, 1);
    picture.Writable()[4 * 399] = 91;
    EXPECT_EQ(Sampling(Encoded(picture, 80)), "221111") << "one pixel of colour, the last";
}

struct FewColours {
    std::string_view name;
    int width, height;
    std::vector<std::array<std::uint8_t, 4>> colours;
};

const FewColours kFewColours[] = {
    { "Coloured", 37, 21, { { 1, 2, 3, 255 }, { 200, 100, 0, 255 } } },
    { "Grey", 37, 21, { { 9, 9, 9, 255 }, { 250, 250, 250, 255 } } },
    { "SeenThrough", 37, 21, { { 9, 9, 9, 0 }, { 250, 0, 250, 77 }, { 0, 50, 0, 255 } } },
    // in pieces that do not begin with the row
    { "TablesFromASample", 700, 401, { { 90, 9, 9, 40 }, { 250, 0, 250, 255 }, { 0, 50, 0, 255 } } },
};

class JpegOfFewColours : public testing::TestWithParam<FewColours> { };

TEST_P(JpegOfFewColours, IsTheSameWhenKeptAsIndices)
{
    const FewColours& c = GetParam();
    Bitmap picture = Bitmap::Uninitialised(c.width, c.height);
    std::uint8_t* out = picture.Writable();
    const auto pixels = static_cast<std::size_t>(c.width) * static_cast<std::size_t>(c.height);
    for (std::size_t i = 0; i < pixels; ++i)
        out = std::ranges::copy(c.colours[i * i / 77 % c.colours.size()], out).out;
    const std::optional<Bitmap> kept = tests::KeptAsIndices(picture);
    ASSERT_TRUE(kept);
    EXPECT_TRUE(Encoded(*kept, 70) == Encoded(picture, 70));
}
INSTANTIATE_TEST_SUITE_P(Jpeg, JpegOfFewColours, testing::ValuesIn(kFewColours), tests::kByName);

TEST(JpegEncode, SaysSrgbAndNothingElse)
{
    for (const bool grey : { false, true }) {
        const auto file = Encoded(grey ? Filled(8, 8, { 1, 1, 1, 255 }) : Scene(), 80);
        int profiles = 0;
        for (const Bytes segment : Segments(file)) {
            EXPECT_NE(segment[1], 0xFE) << "comment";
            const bool application = segment[1] >= 0xE1 && segment[1] <= 0xEF;
            EXPECT_TRUE(!application || segment[1] == 0xE2) << int { segment[1] };
            profiles += application;
        }
        EXPECT_EQ(profiles, 1);
    }
}

TEST(JpegEncode, ProfilesAreSmallAndSrgbInEffect)
{
    using imaging::ColourTransform;
    using imaging::Samples;
    const Bytes colour = imaging::SrgbProfile(), grey = imaging::SrgbGreyProfile();
    EXPECT_LE(colour.size(), 500u);
    EXPECT_LE(grey.size(), 500u);
    EXPECT_EQ(ColourTransform::FromProfile(colour, Samples::Rgba8), nullptr);
    EXPECT_EQ(ColourTransform::FromProfile(grey, Samples::Grey8), nullptr);
    // That null stood for sRGB and not for a broken profile: with another curve it is a transform.
    std::vector<std::uint8_t> other(colour.begin(), colour.end());
    other[other.size() - 19] ^= 1; // the exponent's whole part
    EXPECT_NE(ColourTransform::FromProfile(other, Samples::Rgba8), nullptr);
}

TEST(JpegEncode, PassesOnWhatTheSinkRaises)
{
    Full sink;
    EXPECT_THROW(kJpeg.encode(Scene(), 80, sink), DiskFull);
}

TEST(JpegEncode, AnySizeFromOnePixel)
{
    for (const auto& [width, height] : { std::pair { 1, 1 }, { 1, 700 }, { 32767, 1 }, { 17, 16 } }) {
        const Bitmap again
            = kJpeg.decode(Encoded(Filled(width, height, { 10, 200, 30, 255 }), 90), imaging::Limits());
        EXPECT_EQ(again.Width(), width);
        EXPECT_EQ(again.Height(), height);
        EXPECT_NEAR(again.Row(height - 1)[4 * (width - 1) + 1], 200, 3);
    }
}
