#include <gtest/gtest.h>

#include "tests/support/Naming.h"
#include "tests/support/Pictures.h"
#include "tests/support/ReadData.h"

using namespace veltrane;

namespace {

struct GifCase {
    const char *name, *file, *pixels;
};

constexpr GifCase kGifs[] = {
    { "ByImageMagick", "imagemagick", "scene" },
    { "ByNetpbm", "netpbm", "scene" },
    { "PassesInOrder", "interlaced", "scene" },
    { "FullCodeTable", "noise", "noise" },
    { "HolesBecomeTransparent", "holes", "holes" },
    { "FirstFrameOnItsScreen", "animated", "animated" },
    { "OldVersion", "version87", "six" },
    { "LocalPaletteWins", "local", "six" },
    { "LocalPaletteAlone", "local-only", "six" },
    { "WithoutTrailer", "no-trailer", "six" },
    { "WithoutLastBlock", "no-terminator", "six" },
    { "TrailerInPlaceOfTheLastBlock", "no-terminator-but-trailer", "six" },
    { "BlockLongerThanTheFile", "last-block-longer-than-file", "six" },
    { "GarbageBehindTheFrame", "garbage-behind", "six" },
    { "StrayBytesBetweenBlocks", "stray-bytes", "six" },
    { "ScreenWithoutSize", "empty-screen", "six" },
    { "CommentsSkipped", "comment", "six" },
    { "PlainTextTakesItsControlBlock", "plain-text", "six" },
    { "TransparentIndex", "transparent", "transparent" },
    { "TransparentIndexNeverUsed", "unused-transparent", "six" },
    { "CutAtTheScreen", "outside", "outside" },
    { "WhollyOffTheScreen", "off-screen", "off-screen" },
    { "ShadesWithoutPalette", "no-palette", "no-palette" },
    { "IndexBehindThePalette", "short-palette", "short-palette" },
    { "RowsOffTheScreenNotWanted", "huge-frame", "blue" },
};

class Gif : public testing::TestWithParam<GifCase> { };

TEST_P(Gif, GivesThePixels)
{
    const GifCase& c = GetParam();
    const imaging::Bitmap expected = tests::Pam(std::string("gif/") + c.pixels + ".pam");
    EXPECT_EQ(tests::Difference(tests::Decoded(std::string("gif/") + c.file + ".gif"), expected), 0);
}

INSTANTIATE_TEST_SUITE_P(Decoding, Gif, testing::ValuesIn(kGifs), tests::kByName);

struct BadGif {
    const char *name, *file, *message;
};

constexpr BadGif kBadGifs[] = {
    { "DataCutOff", "bad-cut-data", "fichier GIF incomplet" },
    { "LastBlockWithoutItsData", "bad-last-block-without-data", "fichier GIF incomplet" },
    { "EndsBeforeTheLastPixel", "bad-few-pixels", "fichier GIF endommagé" },
    { "CodeNotInTheTable", "bad-code", "fichier GIF endommagé" },
    { "CodeSizeOver8", "bad-code-size", "fichier GIF endommagé" },
    { "NoFrame", "bad-no-frame", "fichier GIF sans image" },
    { "NothingBehindThePalette", "bad-header-only", "fichier GIF incomplet" },
    { "PaletteCutOff", "bad-cut-palette", "fichier GIF incomplet" },
    { "ExtensionCutOff", "bad-cut-extension", "fichier GIF incomplet" },
    { "FrameWithoutPixels", "bad-empty-frame", "image sans aucun pixel" },
    { "GigapixelsForTwo", "bad-work", "image GIF démesurée par rapport à son écran" },
};

class RefusedGif : public testing::TestWithParam<BadGif> { };

TEST_P(RefusedGif, TellsTheFault)
{
    const BadGif& c = GetParam();
    EXPECT_EQ(tests::RefusalOf([&] { (void)tests::Decoded(std::string("gif/") + c.file + ".gif"); }),
        "UnsupportedFormatException: " + std::string(c.message));
}

INSTANTIATE_TEST_SUITE_P(Decoding, RefusedGif, testing::ValuesIn(kBadGifs), tests::kByName);

} // namespace

TEST(GifLimits, ChecksTheScreenBeforeDecoding)
{
    EXPECT_EQ(
        tests::FaultOf([] { (void)tests::Decoded("gif/bad-wide.gif"); }), imaging::Fault::SideOutOfRange);
    const auto bytes = tests::ReadData("gif/scene.pam");
    EXPECT_EQ(imaging::Find(bytes), nullptr) << "a PAM is no GIF";
    const auto gif = tests::ReadData("gif/netpbm.gif");
    const imaging::Limits small { .maxBytes = 20 * 12 * 4 - 1 };
    EXPECT_EQ(tests::FaultOf([&] { (void)imaging::Find(gif)->decode(gif, small); }),
        imaging::Fault::PixelsOverLimit);
}
