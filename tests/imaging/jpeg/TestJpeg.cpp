#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/jpeg/Jpeg.h"
#include "tests/support/Naming.h"
#include "tests/support/Pictures.h"
#include "tests/support/Pnm.h"
#include "tests/support/ReadData.h"

using namespace veltrane;
using imaging::Bitmap;
using imaging::kJpeg;
using imaging::Limits;

namespace {

std::vector<std::uint8_t> File(std::string_view name)
{
    return tests::ReadData("jpeg/" + std::string(name) + ".jpg");
}

// Mean difference of a channel; every pixel must be opaque.
double Difference(const Bitmap& picture, const tests::Pnm& expected)
{
    EXPECT_EQ(picture.Width(), expected.width);
    EXPECT_EQ(picture.Height(), expected.height);
    EXPECT_TRUE(picture.Opaque());
    if (picture.Width() != expected.width || picture.Height() != expected.height)
        return 255;
    int sum = 0;
    const std::uint8_t* want = expected.rgb.data();
    for (int y = 0; y < expected.height; ++y) {
        for (int x = 0; x < expected.width; ++x, want += 3) {
            const std::uint8_t* const got = picture.Row(y) + 4 * x;
            EXPECT_EQ(got[3], 255);
            for (int i = 0; i < 3; ++i)
                sum += std::abs(got[i] - want[i]);
        }
    }
    return static_cast<double>(sum) / static_cast<double>(expected.rgb.size());
}

// ---- Pictures

struct GoodCase {
    std::string_view name, file;
    std::string_view expected = "scene";
    double most = 1.5; ///< mean difference of a channel
};

constexpr GoodCase kGood[] = {
    { "FullColour", "baseline-444" },
    { "HalvedColourExactlyAsTheReferenceDecoder", "baseline-420", "baseline-420", 0 },
    { "GreyExactlyAsTheReferenceDecoder", "grey", "grey", 0 },
    { "HalvedAcross", "baseline-422", "scene", 3 },
    { "HalvedDown", "sampling-440", "scene", 3 },
    { "EachComponentSampledOtherwise", "sampling-odd", "scene", 5 },
    { "Progressive", "progressive" },
    { "Arithmetic", "arithmetic" },
    { "ArithmeticProgressive", "arithmetic-progressive" },
    { "RestartIntervals", "restart" },
    { "RgbByAdobesMarker", "rgb" },
    { "AScanForEachComponent", "scan-each" },
    { "TurnedLeftToRight", "turned-2" },
    { "TurnedUpsideDown", "turned-3" },
    { "TurnedRight", "turned-6" },
    { "TurnedLeft", "turned-8" },
    { "FirstExifCounts", "exif-twice", "turned-6-as-stored" },
    { "DamagedExifIsUprightAsStored", "exif-damaged", "turned-6-as-stored" },
    { "InvertedInks", "cmyk-adobe" },
    { "InvertedInksAsYcck", "ycck-adobe" },
    { "InksAsTheyAre", "cmyk-plain" },
    { "ProfileInPartsOutOfOrder", "profile-in-parts" },
    { "ProfilePartMissing", "profile-part-missing" },
    { "BrokenProfile", "profile-broken" },
    { "ProfileOfAnotherKind", "profile-of-inks" },
    { "GarbageBehindThePicture", "tail-of-garbage" },
    { "NoEndMark", "no-end-mark" },
    { "ProgressiveNoEndMark", "progressive-no-end-mark" },
    { "PaddingBeforeTheEndMark", "padding-before-end-mark" },
    { "GarbageBetweenSegments", "garbage-between-segments" },
    { "FillBytesBeforeAMarker", "fill-bytes" },
};

class GoodJpeg : public testing::TestWithParam<GoodCase> { };

TEST_P(GoodJpeg, IsSeenAsMeant)
{
    const GoodCase& c = GetParam();
    const auto file = File(c.file);
    const Bitmap picture = kJpeg.decode(file, Limits());
    const auto expected = tests::ReadPnm("jpeg/" + std::string(c.expected) + ".ppm");
    EXPECT_LE(Difference(picture, expected), c.most);
}

INSTANTIATE_TEST_SUITE_P(Jpeg, GoodJpeg, testing::ValuesIn(kGood), tests::kByName);

// ---- Refusals

struct BadCase {
    std::string_view name, file, exception, message;
};

constexpr std::string_view kDamaged = "fichier JPEG endommagé", kCut = "fichier JPEG incomplet";
constexpr std::string_view kFormat = "UnsupportedFormatException", kBounds = "OutOfBoundsException";

constexpr BadCase kBad[] = {
    { "CutInHalf", "bad-cut-in-half", kFormat, kCut },
    { "CutInTheLastBlock", "bad-cut-in-last-block", kFormat, kCut },
    { "CutWithEndMark", "bad-cut-with-end-mark", kFormat, kDamaged },
    { "CutInTheHeader", "bad-cut-in-header", kFormat, kCut },
    { "StartOnly", "bad-start-only", kFormat, kCut },
    { "ProgressiveCutBetweenScans", "bad-progressive-cut-between-scans", kFormat, kCut },
    { "ProgressiveCutInTheLastScan", "bad-progressive-cut-in-last-scan", kFormat, kCut },
    { "ComponentNeverSent", "bad-component-missing", kFormat, kDamaged },
    { "ComponentCutOff", "bad-component-cut-off", kFormat, kCut },
    { "ArithmeticCut", "bad-arithmetic-cut", kFormat, kCut },
    { "RestartMarkMissing", "bad-restart-mark-missing", kFormat, kDamaged },
    { "RestartMarkOfAnotherInterval", "bad-restart-mark-of-another-interval", kFormat, kDamaged },
    { "BytesLeftInARestartInterval", "bad-restart-bytes-left", kFormat, kDamaged },
    { "NoSuchHuffmanCode", "bad-huffman-code", kFormat, kDamaged },
    { "TwelveBits", "bad-12-bits", kFormat, "fichier JPEG dont les échantillons n'ont pas 8 bits" },
    { "Lossless", "bad-lossless", kFormat,
        "variante de JPEG non prise en charge (sans perte ou hiérarchique)" },
    { "NoHeight", "bad-no-height", kFormat, "image sans aucun pixel" },
    { "LargerThanTheLibraryTakes", "bad-65535-square", kBounds,
        "Width/Height needs to be in the range 1-32767" },
    { "LargerThanWeTake", "bad-65000-square", kBounds, "Width/Height needs to be in the range 1-32767" },
    { "ScansWithoutEnd", "bad-scans-without-end", kFormat, kDamaged },
};

class BadJpeg : public testing::TestWithParam<BadCase> { };

TEST_P(BadJpeg, IsRefused)
{
    const BadCase& c = GetParam();
    EXPECT_EQ(tests::RefusalOf([&] { (void)kJpeg.decode(File(c.file), Limits()); }),
        std::string(c.exception) + ": " + std::string(c.message));
}

INSTANTIATE_TEST_SUITE_P(Jpeg, BadJpeg, testing::ValuesIn(kBad), tests::kByName);

// ---- Memory

struct MemoryCase {
    std::string_view name, file;
    std::int64_t enough, little; ///< bytes
};

// Pixels, then what the decoder holds beside them: a few rows of blocks, or all blocks.
constexpr std::int64_t kScene = 42 * 27 * 4, kSquare = 3000 * 3000;
constexpr std::int64_t kTurning = 27 * 4 * 64; // stored rows on their way to columns
constexpr MemoryCase kMemory[] = {
    { "Baseline", "baseline-444", kScene + 10'000, kScene },
    { "Turned", "turned-6", kScene + 10'000 + kTurning, kScene + kTurning },
    { "Progressive", "bad-scans-without-end", 4 * kSquare + 2 * kSquare, 4 * kSquare + kSquare },
};

class JpegMemory : public testing::TestWithParam<MemoryCase> { };

TEST_P(JpegMemory, IsCheckedWithWhatTheDecoderHolds)
{
    const auto file = File(GetParam().file);
    const auto fault = [&](std::int64_t bytes) {
        return tests::FaultOf([&] { (void)kJpeg.decode(file, Limits { .maxBytes = bytes }); });
    };
    EXPECT_NE(fault(GetParam().enough), imaging::Fault::PixelsOverLimit);
    EXPECT_EQ(fault(GetParam().little), imaging::Fault::PixelsOverLimit);
}

INSTANTIATE_TEST_SUITE_P(Jpeg, JpegMemory, testing::ValuesIn(kMemory), tests::kByName);

} // namespace

TEST(Jpeg, ProbeLooksAtTheStart)
{
    EXPECT_TRUE(kJpeg.probe(File("baseline-444")));
    EXPECT_FALSE(kJpeg.probe(tests::ReadData("jpeg/scene.ppm")));
    EXPECT_FALSE(kJpeg.probe({}));
}

TEST(Jpeg, ManyScansOfASmallPictureAreFine)
{
    EXPECT_EQ(kJpeg.decode(File("scans-many-of-a-small-picture"), Limits()).Width(), 16);
}

// Whatever is cut off or changed, there is a picture or a Fault.
TEST(Jpeg, SurvivesCutsAndChanges)
{
    for (const std::string_view name : { "restart", "progressive", "arithmetic", "ycck-adobe", "turned-6" }) {
        const auto whole = File(name);
        for (std::size_t at = 2; at < whole.size(); at += 19) {
            auto changed = whole;
            changed[at] = static_cast<std::uint8_t>(changed[at] ^ (1u << at % 8));
            for (const imaging::Bytes file : { imaging::Bytes(whole).first(at), imaging::Bytes(changed) }) {
                (void)tests::FaultOf([&] { (void)kJpeg.decode(file, Limits { .maxSide = 4096 }); });
            }
        }
    }
}
