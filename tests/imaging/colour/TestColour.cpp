#include <array>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/colour/Colour.h"
#include "tests/support/Naming.h"
#include "tests/support/ReadData.h"

using namespace veltrane;
using imaging::ColourTransform;
using imaging::Samples;

namespace {

using Colour = std::array<std::uint8_t, 4>;

struct ProfileCase {
    std::string_view name, file;
    Samples from;
    Colour sample;
    std::optional<Colour> expected; // none: no transform
};

// Expected numbers: tests/data/colour/make.sh computes them from the formulas.
const ProfileCase kProfiles[] = {
    { "AdobeColour", "adobe", Samples::Rgba8, { 200, 100, 50, 77 }, { { 227, 100, 42, 77 } } },
    { "AdobeOutsideSrgb", "adobe", Samples::Rgba8, { 40, 90, 140, 255 }, { { 0, 90, 143, 255 } } },
    { "AdobeGreyStaysGrey", "adobe", Samples::Rgba8, { 128, 128, 128, 0 }, { { 129, 129, 129, 0 } } },
    { "AdobeWhite", "adobe", Samples::Rgba8, { 255, 255, 255, 255 }, { { 255, 255, 255, 255 } } },
    { "Adobe16Bits", "adobe", Samples::Rgba16, { 200, 100, 50, 77 }, { { 227, 100, 42, 77 } } },
    { "PrimariesExchanged", "rotated", Samples::Rgba8, { 200, 100, 50, 9 }, { { 50, 200, 100, 9 } } },
    { "CurveAsTableIsSrgb", "srgb-table", Samples::Rgba8, {}, {} },
    { "CurveAsFormulaIsSrgb", "srgb-v4", Samples::Rgba8, {}, {} },
    { "SrgbIn16Bits", "srgb-v4", Samples::Rgba16, {}, {} },
    { "GreyLinear", "grey-linear", Samples::Grey8, { 64 }, { { 137, 137, 137, 255 } } },
    { "GreyLinearShadow", "grey-linear", Samples::Grey8, { 1 }, { { 13, 13, 13, 255 } } },
    { "GreyOfSrgb", "grey-srgb", Samples::Grey8, {}, {} },
    { "PaperIsWhite", "inks", Samples::Cmyk8, { 0, 0, 0, 0 }, { { 255, 255, 255, 255 } } },
    { "DeepestBlackIsBlack", "inks", Samples::Cmyk8, { 255, 255, 255, 255 }, { { 0, 0, 0, 255 } } },
    { "Inks16Bits", "inks", Samples::Cmyk16, { 255, 255, 255, 255 }, { { 0, 0, 0, 255 } } },
    { "CyanInk", "inks", Samples::Cmyk8, { 255, 0, 0, 0 }, { { 0, 190, 255, 255 } } },
    { "ChainOfElementsIsNotFollowed", "inks-chain", Samples::Cmyk8, { 255, 0, 0, 0 },
        { { 0, 190, 255, 255 } } },
    { "CutOff", "cut", Samples::Rgba8, {}, {} },
    { "LinkBetweenDevices", "link", Samples::Rgba8, {}, {} },
    { "InksForColour", "inks", Samples::Rgba8, {}, {} },
    { "ColourForGrey", "adobe", Samples::Grey8, {}, {} },
    { "ColourForInks", "adobe", Samples::Cmyk8, {}, {} },
};

Colour Convert(const ColourTransform& transform, Samples from, const Colour& sample)
{
    Colour result { 1, 2, 3, 4 };
    if (from == Samples::Rgba16 || from == Samples::Cmyk16) {
        std::array<std::uint16_t, 4> wide {};
        for (std::size_t i = 0; i < 4; ++i)
            wide[i] = static_cast<std::uint16_t>(sample[i] * 257);
        transform.Apply(wide.data(), result.data(), 1);
    } else {
        transform.Apply(sample.data(), result.data(), 1);
    }
    return result;
}

void ExpectNear(const Colour& got, const Colour& expected)
{
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_LE(std::abs(got[i] - expected[i]), 1) << "channel " << i << ": " << int { got[i] };
    EXPECT_EQ(got[3], expected[3]) << "alpha";
}

class Profile : public testing::TestWithParam<ProfileCase> { };

TEST_P(Profile, ConvertsOrIsPassedOver)
{
    const ProfileCase& c = GetParam();
    const auto icc = tests::ReadData("colour/" + std::string(c.file) + ".icc");
    const auto transform = ColourTransform::FromProfile(icc, c.from);
    ASSERT_EQ(transform != nullptr, c.expected.has_value());
    if (transform)
        ExpectNear(Convert(*transform, c.from, c.sample), *c.expected);
}

INSTANTIATE_TEST_SUITE_P(Colour, Profile, testing::ValuesIn(kProfiles), tests::kByName);

constexpr imaging::Primaries kSrgb { { .3127, .329 }, { .64, .33 }, { .3, .6 }, { .15, .06 } };
constexpr imaging::Primaries kExchanged { { .3127, .329 }, { .3, .6 }, { .15, .06 }, { .64, .33 } };
constexpr imaging::Primaries kOnOneLine { { .3127, .329 }, { .1, .1 }, { .2, .2 }, { .3, .3 } };
constexpr imaging::Primaries kNoWhite { { .3127, 0 }, { .64, .33 }, { .3, .6 }, { .15, .06 } };

struct GammaCase {
    std::string_view name;
    double gamma;
    std::optional<imaging::Primaries> primaries;
    Samples from;
    Colour sample;
    std::optional<Colour> expected;
};

const GammaCase kGammas[] = {
    { "Linear", 1.0, {}, Samples::Rgba8, { 10, 128, 250, 5 }, { { 56, 188, 253, 5 } } },
    { "Linear16Bits", 1.0, {}, Samples::Rgba16, { 10, 128, 250, 5 }, { { 56, 188, 253, 5 } } },
    { "Steep", 0.35, kSrgb, Samples::Rgba8, { 10, 128, 250, 255 }, { { 0, 104, 249, 255 } } },
    { "PrimariesExchanged", 1.0, kExchanged, Samples::Rgba8, { 10, 128, 250, 5 }, { { 253, 56, 188, 5 } } },
    { "UsualNumberMeansSrgb", 0.45455, {}, Samples::Rgba8, {}, {} },
    { "UsualNumberWithItsPrimaries", 0.45455, kSrgb, Samples::Rgba16, {}, {} },
    { "Zero", 0.0, {}, Samples::Rgba8, {}, {} },
    { "NotANumber", std::numeric_limits<double>::quiet_NaN(), {}, Samples::Rgba8, {}, {} },
    { "PrimariesOnOneLine", 1.0, kOnOneLine, Samples::Rgba8, { 10, 128, 250, 5 }, { { 56, 188, 253, 5 } } },
    { "WhiteWithoutLight", 1.0, kNoWhite, Samples::Rgba16, { 10, 128, 250, 5 }, { { 56, 188, 253, 5 } } },
    { "UsualNumberWithoutWhite", 0.45455, kNoWhite, Samples::Rgba8, {}, {} },
};

class Gamma : public testing::TestWithParam<GammaCase> { };

TEST_P(Gamma, ConvertsOrIsPassedOver)
{
    const GammaCase& c = GetParam();
    const auto transform = ColourTransform::FromGamma(c.gamma, c.primaries, c.from);
    ASSERT_EQ(transform != nullptr, c.expected.has_value());
    if (transform)
        ExpectNear(Convert(*transform, c.from, c.sample), *c.expected);
}

INSTANTIATE_TEST_SUITE_P(Colour, Gamma, testing::ValuesIn(kGammas), tests::kByName);

} // namespace

TEST(Colour, UntaggedInksTakeLightAway)
{
    for (const Samples from : { Samples::Cmyk8, Samples::Cmyk16 }) {
        const auto inks = ColourTransform::FromUntaggedInks(from);
        EXPECT_EQ(Convert(*inks, from, { 0, 0, 0, 0 }), (Colour { 255, 255, 255, 255 }));
        EXPECT_EQ(Convert(*inks, from, { 255, 0, 128, 0 }), (Colour { 0, 255, 127, 255 }));
        EXPECT_EQ(Convert(*inks, from, { 0, 51, 0, 128 }), (Colour { 127, 102, 127, 255 }));
    }
}

TEST(Colour, SameProfileSameTransform)
{
    const auto icc = tests::ReadData("colour/adobe.icc");
    const auto copy = icc;
    const auto first = ColourTransform::FromProfile(icc, Samples::Rgba8);
    EXPECT_EQ(ColourTransform::FromProfile(copy, Samples::Rgba8), first);
    EXPECT_NE(ColourTransform::FromProfile(icc, Samples::Rgba16), first) << "another layout";
}

TEST(Colour, NoCutOfAProfileIsFatal)
{
    for (const std::string name : { "adobe", "inks-chain", "grey-srgb" }) {
        auto icc = tests::ReadData("colour/" + name + ".icc");
        while (!icc.empty()) {
            icc.resize(icc.size() - std::min<std::size_t>(icc.size(), 61));
            (void)ColourTransform::FromProfile(icc, Samples::Rgba8);
            (void)ColourTransform::FromProfile(icc, Samples::Grey8);
        }
    }
}
