#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/png/Png.h"
#include "tests/support/Naming.h"
#include "tests/support/Pictures.h"
#include "tests/support/ReadData.h"

using namespace veltrane;
using imaging::Bitmap;
using imaging::Fault;
using imaging::kPng;
using imaging::Limits;

namespace {

std::vector<std::string> GoodFiles()
{
    std::vector<std::string> names;
    for (const auto& file : std::filesystem::directory_iterator(TEST_DATA "/png/good")) {
        if (file.path().extension() == ".png")
            names.push_back(file.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string TestName(const testing::TestParamInfo<std::string>& row)
{
    std::string name = row.param;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '-' || c == '.'; }, '_');
    return name;
}

// Sixteen bits and converted colours may be rounded otherwise by one.
int ToleranceOf(const std::string& name)
{
    const bool converted = name.starts_with("gamma-") || name.starts_with("code-points-p3")
        || name.starts_with("code-points-2020") || name.starts_with("profile");
    return converted || name.find("16") != std::string::npos ? 1 : 0;
}

int LargestDifference(const Bitmap& picture, const std::vector<std::uint8_t>& expected)
{
    int largest = 0;
    std::size_t at = 0;
    for (int y = 0; y < picture.Height(); ++y) {
        for (std::size_t i = 0; i < picture.Stride(); ++i)
            largest = std::max(largest, std::abs(picture.Row(y)[i] - expected[at++]));
    }
    return largest;
}

class PngGood : public testing::TestWithParam<std::string> { };

} // namespace

// tests/data/png/make.sh makes the files and tells what each shows.
TEST_P(PngGood, ShowsWhatWasStored)
{
    const auto file = tests::ReadData("png/good/" + GetParam() + ".png");
    const auto expected = tests::ReadData("png/good/" + GetParam() + ".rgba");
    const Bitmap picture = kPng.decode(file, Limits {});
    ASSERT_EQ(expected.size(), picture.Stride() * static_cast<std::size_t>(picture.Height()));
    EXPECT_LE(LargestDifference(picture, expected), ToleranceOf(GetParam()));
    bool opaque = true;
    for (std::size_t i = 3; i < expected.size(); i += 4)
        opaque = opaque && expected[i] == 255;
    EXPECT_EQ(picture.Opaque(), opaque);
}

INSTANTIATE_TEST_SUITE_P(Decode, PngGood, testing::ValuesIn(GoodFiles()), TestName);

namespace {

struct BadCase {
    std::string_view name, file, message;
};

constexpr BadCase kBad[] = {
    { "OnlySignature", "cut-signature", "fichier PNG incomplet" },
    { "CutInHeader", "cut-header", "fichier PNG incomplet" },
    { "CutInData", "cut-data", "fichier PNG incomplet" },
    { "CutInDataChecksum", "cut-checksum", "fichier PNG incomplet" },
    { "CutBetweenData", "cut-between-data", "fichier PNG incomplet" },
    { "StreamCut", "cut-stream", "fichier PNG endommagé : pixels illisibles" },
    { "StreamChecksumCut", "cut-adler", "fichier PNG endommagé : pixels illisibles" },
    { "StreamChecksumWrong", "wrong-adler", "fichier PNG endommagé : pixels illisibles" },
    { "NotAStream", "data-not-zlib", "fichier PNG endommagé : pixels illisibles" },
    { "NoByteOfData", "data-empty", "fichier PNG endommagé : pixels illisibles" },
    { "RowMissing", "row-missing", "fichier PNG endommagé : trop peu de pixels" },
    { "NoData", "no-data", "fichier PNG endommagé : aucun pixel" },
    { "HeaderChecksum", "wrong-header-checksum", "fichier PNG endommagé : en-tête" },
    { "DataBeforeHeader", "data-before-header", "fichier PNG endommagé : en-tête" },
    { "DataChecksum", "wrong-data-checksum", "fichier PNG endommagé : somme de contrôle des pixels" },
    { "PaletteChecksum", "wrong-palette-checksum", "fichier PNG endommagé : palette" },
    { "EndChecksum", "wrong-end-checksum", "fichier PNG endommagé : somme de contrôle" },
    { "NoPalette", "no-palette", "fichier PNG endommagé : palette absente" },
    { "PaletteOddLength", "palette-of-4-bytes", "fichier PNG endommagé : palette" },
    { "PaletteTooLong", "palette-of-257", "fichier PNG endommagé : palette" },
    { "FilterInBand", "filter-5", "fichier PNG endommagé : filtre inconnu" },
    { "FilterBelowBands", "filter-5-at-end", "fichier PNG endommagé : filtre inconnu" },
    { "FilterInPass", "filter-5-interlaced", "fichier PNG endommagé : filtre inconnu" },
    { "Depth3", "depth-3", "fichier PNG endommagé : type de couleur ou profondeur inconnus" },
    { "Depth4OfRgb", "depth-4-rgb", "fichier PNG endommagé : type de couleur ou profondeur inconnus" },
    { "ColourType5", "colour-type-5", "fichier PNG endommagé : type de couleur ou profondeur inconnus" },
    { "Interlace2", "interlace-2", "fichier PNG endommagé : méthode de codage inconnue" },
    { "Compression1", "compression-1", "fichier PNG endommagé : méthode de codage inconnue" },
    { "Filtering64", "filtering-64", "fichier PNG endommagé : méthode de codage inconnue" },
    { "UnknownCritical", "unknown-critical", "fichier PNG endommagé : bloc inconnu" },
    { "NonsenseBeforeData", "nonsense-before-data", "fichier PNG endommagé : structure" },
    { "NoWidth", "width-0", "image sans aucun pixel" },
};

class PngBad : public testing::TestWithParam<BadCase> { };

} // namespace

TEST_P(PngBad, IsRefusedWithItsReason)
{
    const auto file = tests::ReadData("png/bad/" + std::string(GetParam().file) + ".png");
    EXPECT_EQ(tests::RefusalOf([&] { (void)kPng.decode(file, Limits {}); }),
        "UnsupportedFormatException: " + std::string(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(Decode, PngBad, testing::ValuesIn(kBad), tests::kByName);

namespace {

std::optional<Fault::Code> FaultOf(const std::string& name, const Limits& limits)
{
    const auto file = tests::ReadData("png/" + name + ".png");
    return tests::FaultOf([&] { (void)kPng.decode(file, limits); });
}

} // namespace

TEST(PngLimits, AreAskedBeforeAnythingIsAllocated)
{
    EXPECT_EQ(FaultOf("bad/width-32768", {}), Fault::SideOutOfRange);
    EXPECT_EQ(FaultOf("bad/height-2^31", {}), Fault::SideOutOfRange);
    EXPECT_EQ(FaultOf("bad/bomb", { .maxBytes = 64 << 20 }), Fault::PixelsOverLimit);
}

TEST(PngLimits, CountTheRowsThatDoNotFitBesideThePixels)
{
    // Enough for 8 bits a sample, not for the rows of 16.
    constexpr Limits kLimits { .maxBytes = 13 * 11 * 4 + 700 };
    EXPECT_EQ(FaultOf("good/rgba8", kLimits), std::nullopt);
    EXPECT_EQ(FaultOf("good/rgba16", kLimits), Fault::PixelsOverLimit);
    EXPECT_EQ(FaultOf("good/rgba8i", kLimits), Fault::PixelsOverLimit);
}

TEST(PngDamage, AnyCutOrFlippedByteGivesAPictureOrARefusal)
{
    for (const char* const name : { "palette2", "rgba16i", "turned-6", "data-in-bytes" }) {
        const auto whole = tests::ReadData("png/good/" + std::string(name) + ".png");
        for (std::size_t i = 0; i < whole.size(); ++i) {
            auto flipped = whole;
            flipped[i] ^= static_cast<std::uint8_t>(1U << i % 8);
            for (const imaging::Bytes file : { imaging::Bytes(whole).first(i), imaging::Bytes(flipped) }) {
                (void)tests::FaultOf([&] { (void)kPng.decode(file, Limits {}); });
            }
        }
    }
}
