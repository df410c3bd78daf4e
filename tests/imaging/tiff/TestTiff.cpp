#include <algorithm>

#include <gtest/gtest.h>

#include "imaging/colour/Colour.h"
#include "tests/support/Naming.h"
#include "tests/support/Pictures.h"
#include "tests/support/ReadData.h"

using namespace veltrane;

namespace {

std::string Path(std::string_view name, std::string_view ending)
{
    return "tiff/" + std::string(name) + std::string(ending);
}

struct TiffCase {
    std::string_view file, pixels;
    int tolerance = 0;
};

// The name of a test is that of its file, which tells what it is about.
constexpr TiffCase kTiffs[] = {
    { "plain", "scene" },
    { "big-endian", "scene" },
    { "bigtiff", "scene" },
    { "bigtiff-planes", "scene" },
    { "tiles", "scene" },
    { "plain-lsb", "scene" },
    { "lzw-predictor", "scene" },
    { "lzw-lsb", "scene" },
    { "lzw-16-bits", "scene" },
    { "lzw-repeats", "repeats" },
    { "lzw-tiles-planes", "repeats" },
    { "deflate-tiles-planes", "scene" },
    { "deflate", "deflate" },
    { "packbits-planes", "scene" },
    { "zstd", "scene" },
    { "lzma", "scene" },
    { "lerc", "scene" },
    { "webp", "scene", 24 },
    { "jpeg-rgb", "scene", 6 },
    { "jpeg-rgb-tiles", "scene", 6 },
    { "jpeg-ycbcr", "scene", 12 },
    { "old-jpeg", "scene-jpeg", 3 },
    { "ycbcr-22", "ycbcr-22", 1 },
    { "ycbcr-11", "ycbcr-11", 1 },
    { "ycbcr-11-planes", "ycbcr-11", 1 },
    { "bilevel-g3", "bilevel" },
    { "bilevel-g3-2d", "bilevel" },
    { "bilevel-g3-fill", "bilevel" },
    { "bilevel-g4", "bilevel" },
    { "bilevel-g4-lsb", "bilevel" },
    { "bilevel-g4-tiles", "bilevel" },
    { "bilevel-black", "bilevel" },
    { "bilevel-packbits", "bilevel" },
    { "bilevel-jbig", "bilevel" },
    { "rle", "rle" },
    { "next", "next" },
    { "thunderscan", "next" },
    { "logarithms", "logarithms", 1 },
    { "orientation-1", "orientation-1" },
    { "orientation-2", "orientation-2" },
    { "orientation-3", "orientation-3" },
    { "orientation-4", "orientation-4" },
    { "orientation-5", "orientation-5" },
    { "orientation-6", "orientation-6" },
    { "orientation-7", "orientation-7" },
    { "orientation-8", "orientation-8" },
    { "grey1", "grey1" },
    { "grey2", "grey2" },
    { "grey3", "grey3" },
    { "grey4", "grey4" },
    { "grey6", "grey6" },
    { "grey8", "grey8" },
    { "grey10", "grey10" },
    { "grey12", "grey12" },
    { "grey12-ties", "grey12-ties" },
    { "grey14", "grey14" },
    { "grey16", "grey16" },
    { "grey16-mm", "grey16" },
    { "grey16-all", "grey16-all" },
    { "grey24", "grey24" },
    { "grey24-mm", "grey24" },
    { "grey32", "grey32" },
    { "grey32-mm", "grey32" },
    { "grey64", "grey64" },
    { "grey64-mm", "grey64" },
    { "white1", "white1" },
    { "white16", "white16" },
    { "signed8", "signed8" },
    { "signed16", "signed16" },
    { "float16", "float" },
    { "float16-mm", "float" },
    { "float16-tiny", "float16-tiny" },
    { "float24", "float" },
    { "float32", "float" },
    { "float32-mm", "float" },
    { "float64", "float" },
    { "float64-mm", "float" },
    { "float-range", "float-range" },
    { "rgb4", "rgb4" },
    { "rgb4-planes", "rgb4" },
    { "rgb8", "rgb8" },
    { "rgb8-planes", "rgb8" },
    { "rgb12", "rgb12" },
    { "rgb12-planes", "rgb12" },
    { "rgb16", "rgb16" },
    { "rgb16-planes", "rgb16" },
    { "rgb32", "rgb32" },
    { "rgb32-planes", "rgb32" },
    { "palette2", "palette2" },
    { "palette2-bytes", "palette2-bytes" },
    { "palette2-upper-bytes", "palette2-upper-bytes" },
    { "palette8", "palette8", 1 },
    { "palette10", "palette10" },
    { "palette16", "palette16", 1 },
    { "palette-alpha", "palette-alpha" },
    { "palette-alpha-planes", "palette-alpha" },
    { "alpha8", "alpha" },
    { "alpha8-planes", "alpha" },
    { "alpha8-missing", "alpha" },
    { "alpha8-unspecified", "alpha-unspecified" },
    { "alpha8-associated", "alpha8-associated" },
    { "alpha8-associated-planes", "alpha8-associated" },
    { "rgb-untold", "alpha-unspecified" },
    { "rgb-untold-planes", "alpha-unspecified" },
    { "alpha-untold", "alpha" },
    { "alpha-untold-planes", "alpha" },
    { "alpha16", "alpha" },
    { "alpha16-planes", "alpha" },
    { "alpha16-missing-planes", "alpha" },
    { "alpha16-unspecified", "alpha-unspecified" },
    { "alpha16-associated", "alpha16-associated" },
    { "alpha-second", "alpha" },
    { "alpha-second-planes", "alpha" },
    { "grey-alpha", "grey-alpha" },
    { "grey-alpha-planes", "grey-alpha" },
    { "white-alpha", "white-alpha" },
    { "float-alpha", "float-alpha", 1 },
    { "float-alpha-planes", "float-alpha", 1 },
    { "cmyk8", "cmyk" },
    { "cmyk8-planes", "cmyk" },
    { "cmyk16", "cmyk" },
    { "cmyk16-planes", "cmyk" },
    { "cmyk-alpha", "cmyk-alpha" },
    { "cielab8", "lab", 1 },
    { "cielab8-planes", "lab", 1 },
    { "cielab16", "lab", 1 },
    { "icclab8", "lab", 1 },
    { "icclab16", "lab" },
    { "icclab16-planes", "lab", 1 },
    { "itulab8", "lab", 2 },
    { "icc-rgb8", "icc-rgb", 1 },
    { "icc-rgb16", "icc-rgb", 1 },
    { "icc-palette", "icc-rgb", 1 },
    { "icc-broken", "icc-broken" },
    { "first-page", "page" },
    { "after-thumbnail", "page" },
    { "after-old-thumbnail", "page" },
    { "after-mask", "page" },
    { "only-thumbnail", "page" },
    { "in-child", "page" },
    { "sensor-child", "page" },
    { "loop", "page" },
    { "chain-into-nothing", "page" },
};

class Tiff : public testing::TestWithParam<TiffCase> { };

TEST_P(Tiff, GivesThePixels)
{
    const TiffCase& c = GetParam();
    const imaging::Bitmap expected = tests::Pam(Path(c.pixels, ".pam"));
    EXPECT_LE(tests::Difference(tests::Decoded(Path(c.file, ".tif")), expected), c.tolerance);
}

// Names of tests hold no hyphens.
constexpr auto kByFile = [](const auto& row) {
    std::string name(row.param.file);
    std::ranges::replace(name, '-', '_');
    return name;
};

INSTANTIATE_TEST_SUITE_P(Decoding, Tiff, testing::ValuesIn(kTiffs), kByFile);

struct BadTiff {
    std::string_view file, message;
};

constexpr std::string_view kDamaged = "fichier TIFF endommagé";
constexpr std::string_view kCut = "fichier TIFF incomplet";

constexpr BadTiff kBadTiffs[] = {
    { "bad-cut-bilevel-g3", kDamaged },
    { "bad-cut-bilevel-g3-2d", kDamaged },
    { "bad-cut-bilevel-g4", kDamaged },
    { "bad-cut-bilevel-jbig", kDamaged },
    { "bad-cut-jpeg-rgb", kDamaged },
    { "bad-cut-lerc", kDamaged },
    { "bad-cut-lzma", kDamaged },
    { "bad-cut-lzw-predictor", kDamaged },
    { "bad-cut-packbits-planes", kDamaged },
    { "bad-cut-plain", kDamaged },
    { "bad-cut-webp", kDamaged },
    { "bad-cut-zstd", kDamaged },
    { "bad-cut-file", kCut },
    { "bad-jbig-rows", kDamaged },
    { "bad-jpeg-low-strip", kDamaged },
    { "bad-checksum", kDamaged },
    { "bad-fewer-bytes", kDamaged },
    { "bad-no-strips", kDamaged },
    { "bad-sparse", kDamaged },
    { "bad-palette", kDamaged },
    { "bad-sizes", kDamaged },
    { "bad-tile", kDamaged },
    { "bad-flood", kDamaged },
    { "bad-huge", kCut },
    { "bad-header", kCut },
    { "bad-directory", kCut },
    { "bad-no-height", "image sans aucun pixel" },
    { "bad-colours", "couleurs TIFF non prises en charge" },
    { "bad-complex", "nombres TIFF non pris en charge" },
    { "bad-compression", "compression TIFF non prise en charge" },
    { "bad-many-inks", "encres TIFF non prises en charge" },
    { "bad-samples", "pixels TIFF non pris en charge" },
};

class RefusedTiff : public testing::TestWithParam<BadTiff> { };

TEST_P(RefusedTiff, TellsTheFaultAndSaysNothing)
{
    const BadTiff& c = GetParam();
    testing::internal::CaptureStderr();
    EXPECT_EQ(tests::RefusalOf([&] { (void)tests::Decoded(Path(c.file, ".tif")); }),
        "UnsupportedFormatException: " + std::string(c.message));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

INSTANTIATE_TEST_SUITE_P(Decoding, RefusedTiff, testing::ValuesIn(kBadTiffs), kByFile);

} // namespace

TEST(TiffLimits, CheckedBeforeDecoding)
{
    EXPECT_EQ(
        tests::FaultOf([] { (void)tests::Decoded("tiff/bad-wide.tif"); }), imaging::Fault::SideOutOfRange);
    const auto tiff = tests::ReadData("tiff/orientation-6.tif");
    constexpr int kPixels = 21 * 13 * 4;
    EXPECT_NO_THROW((void)imaging::Find(tiff)->decode(tiff, { .maxBytes = 2 * kPixels }));
    EXPECT_EQ(
        tests::FaultOf([&] { (void)imaging::Find(tiff)->decode(tiff, { .maxBytes = 2 * kPixels - 1 }); }),
        imaging::Fault::PixelsOverLimit)
        << "a turned picture needs two";
}

// A fourth of the memory; pixels stay what the table above expects of them.
TEST(Tiff, KeepsBytesThatArePixelsAsTheyAre)
{
    const auto kept = [](const char* name) { return tests::Decoded(name).Indices(0) != nullptr; };
    EXPECT_TRUE(kept("tiff/grey8.tif"));
    EXPECT_TRUE(kept("tiff/palette8.tif"));
    EXPECT_FALSE(kept("tiff/grey4.tif")) << "two to a byte";
}

TEST(TiffInks, GoThroughTheirProfileAtTheirDepth)
{
    constexpr int kInks = 6;
    const std::uint8_t stored[kInks * 4]
        = { 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 51, 102, 0, 128 };
    const auto profile
        = imaging::ColourTransform::FromProfile(tests::ReadData("colour/inks.icc"), imaging::Samples::Cmyk8);
    ASSERT_NE(profile, nullptr);
    imaging::Bitmap expected = imaging::Bitmap::Uninitialised(kInks, 1);
    profile->Apply(stored, expected.Writable(), kInks);
    EXPECT_EQ(tests::Difference(tests::Decoded("tiff/icc-cmyk8.tif"), expected), 0);
    EXPECT_LE(tests::Difference(tests::Decoded("tiff/icc-cmyk16.tif"), expected), 1);
}
