#include <filesystem>
#include <ostream>

#include <gtest/gtest.h>

#include "tests/support/Naming.h"
#include "tests/support/PictFiles.h"
#include "tests/support/Pictures.h"

using namespace veltrane;
using namespace veltrane::tests;

namespace {

struct Refusal {
    std::string_view name; ///< the fault that the row catches
    std::string_view file;
    std::string_view exception;
    std::string_view message;
};

void PrintTo(const Refusal& c, std::ostream* out)
{
    *out << c.file;
}

constexpr std::string_view kUnsupported = "UnsupportedFormatException";

constexpr Refusal kRefusals[] = {
    { "RowWithoutAByte", "bad-row-missing", kUnsupported, "données d'image PICT endommagées" },
    { "RowWithoutAllItsPixels", "bad-row-short", kUnsupported, "données d'image PICT endommagées" },
    { "DepthThatDoesNotExist", "bad-depth", kUnsupported, "profondeur de pixel PICT inconnue" },
    { "RowBytesTooFewForTheWidth", "bad-row-bytes", kUnsupported, "dimensions d'image PICT contradictoires" },
    { "BoundsWithoutARow", "bad-bounds-empty", kUnsupported, "dimensions d'image PICT contradictoires" },
    { "RegionSmallerThanItsHead", "bad-region-size", kUnsupported, "région PICT endommagée" },
    { "RegionRowsNotRising", "bad-region-rows", kUnsupported, "région PICT endommagée" },
    { "OpcodeCutOff", "bad-opcode-cut", kUnsupported, "fichier incomplet" },
    { "PaletteOfThousands", "bad-palette", kUnsupported, "palette PICT endommagée" },
    { "PatternOfMillions", "bad-pattern-size", kUnsupported, "motif PICT endommagé" },
    { "FrameBeyondTheLimit", "bad-frame-huge", "OutOfBoundsException",
        "Width/Height needs to be in the range 1-32767" },
    { "StillCutOff", "bad-still-cut", kUnsupported, "fichier incomplet" },
    { "StillPromisesMoreThanItsBytes", "bad-still-short", kUnsupported, "image QuickTime incomplète" },
    { "StillDearerThanThePicture", "bad-still-huge", kUnsupported, "dessin PICT démesuré" },
    { "PictureWithinThePicture", "bad-still-picture", kUnsupported,
        "compression QuickTime « Pict » inconnue" },
    { "StillTurnedOver", "bad-still-tilted", kUnsupported, "image QuickTime tournée ou retournée" },
    { "UnknownCompressorByItsName", "quicktime-unknown", kUnsupported,
        "compression QuickTime « Curvesé » inconnue" },
};

class Refused : public testing::TestWithParam<Refusal> { };

TEST_P(Refused, RaisesAndSaysWhy)
{
    EXPECT_EQ(RefusalOf([] { (void)DecodePict(GetParam().file); }),
        std::string(GetParam().exception) + ": " + std::string(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(Pict, Refused, testing::ValuesIn(kRefusals), kByName);

TEST(PictLimits, AreCheckedBeforePixelsAreTaken)
{
    const auto fault = [](const imaging::Limits& limits) {
        return FaultOf([&] { (void)DecodePict("rect-frame", limits); });
    };
    EXPECT_EQ(fault({ 7, std::int64_t { 1 } << 30 }), imaging::Fault::SideOutOfRange);
    EXPECT_EQ(fault({ 8, 100 }), imaging::Fault::PixelsOverLimit);
}

// Two bytes paint sixteen million pixels: without a bound on the work, a small file takes hours.
TEST(PictLimits, FloodOfOpcodesIsStopped)
{
    std::vector<std::uint8_t> file = PictFile("header-none");
    const std::vector<std::uint8_t> side { 0x0F, 0xA0, 0x0F, 0xA0 }; // 4000, 4000
    std::copy(side.begin(), side.end(), file.begin() + 6);
    file.resize(14);
    const std::vector<std::uint8_t> whole { 0x00, 0x31, 0, 0, 0, 0, 0x0F, 0xA0, 0x0F, 0xA0 };
    file.insert(file.end(), whole.begin(), whole.end());
    for (int i = 0; i < 1000; ++i)
        file.insert(file.end(), { 0x00, 0x39 }); // the same again
    EXPECT_EQ(
        FaultOf([&] { (void)imaging::kPict.decode(file, {}); }), imaging::Fault::PictDrawingOutOfProportion);
    file.resize(24 + 2 * 8);
    EXPECT_EQ(imaging::kPict.decode(file, {}).Width(), 4000) << "a few are no flood";
}

struct Claim {
    std::string_view name;
    std::string_view file;
    std::size_t changed; ///< the byte that is set to 0x75; past the end: none
    std::size_t length; ///< of the file's beginning that is seen
    bool claimed;
};

constexpr Claim kClaims[] = {
    { "VersionTwo", "rect-frame", SIZE_MAX, 1024, true },
    { "VersionTwoBehindAHeader", "header-file", SIZE_MAX, 1024, true },
    { "VersionOne", "v1-bits", SIZE_MAX, 1024, true },
    { "VersionOneBehindAHeader", "header-file-v1", SIZE_MAX, 1024, true },
    { "MarkBroken", "rect-frame", 12, 1024, false },
    { "MarkNotSeen", "rect-frame", SIZE_MAX, 13, false },
    { "FrameUpsideDown", "rect-frame", 2, 1024, false },
    { "VersionOneWithoutSense", "v1-bits", 12, 1024, false },
    { "Nothing", "rect-frame", SIZE_MAX, 0, false },
};

void PrintTo(const Claim& c, std::ostream* out)
{
    *out << c.file;
}

class Claimed : public testing::TestWithParam<Claim> { };

TEST_P(Claimed, ByItsFirstBytes)
{
    std::vector<std::uint8_t> file = PictFile(GetParam().file);
    if (GetParam().changed < file.size())
        file[GetParam().changed] = 0x75; // a reserved opcode, and a top below any bottom
    file.resize(std::min(file.size(), GetParam().length));
    EXPECT_EQ(imaging::kPict.probe(file), GetParam().claimed);
}

INSTANTIATE_TEST_SUITE_P(Pict, Claimed, testing::ValuesIn(kClaims), kByName);

TEST(PictProbe, LeavesTheOtherPicAlone)
{
    std::vector<std::uint8_t> file = PictFile("header-file");
    const std::vector<std::uint8_t> softimage { 0x53, 0x80, 0xF6, 0x34 };
    std::copy(softimage.begin(), softimage.end(), file.begin());
    EXPECT_FALSE(imaging::kPict.probe(file));
}

TEST(PictDamage, PixelsThatAreCutOffAreNotMadeUp)
{
    std::vector<std::uint8_t> file = PictFile("v2-8bit-word-count");
    file.resize(file.size() - 40);
    EXPECT_EQ(FaultOf([&] { (void)imaging::kPict.decode(file, {}); }), imaging::Fault::Incomplete);
}

// Whatever the bytes: a picture or a Fault. Every file, cut at every place and with every
// byte changed; the limits keep frames that grow by it small.
TEST(PictDamage, EndsInAPictureOrARefusal)
{
    imaging::Limits limits;
    limits.maxBytes = 48 << 20;
    const auto survive = [&limits](const std::vector<std::uint8_t>& file) {
        (void)FaultOf([&] { (void)imaging::kPict.decode(file, limits); });
    };
    for (const auto& entry : std::filesystem::directory_iterator(TEST_DATA "/pict")) {
        const std::vector<std::uint8_t> file = PictFile(entry.path().stem().string());
        SCOPED_TRACE(entry.path().string());
        for (std::size_t i = entry.path().extension() == ".pict" ? 0 : file.size(); i < file.size(); ++i) {
            EXPECT_NO_THROW(survive({ file.begin(), file.begin() + static_cast<std::ptrdiff_t>(i) }));
            std::vector<std::uint8_t> changed = file;
            changed[i] ^= 0x81;
            EXPECT_NO_THROW(survive(changed));
        }
    }
}

} // namespace
