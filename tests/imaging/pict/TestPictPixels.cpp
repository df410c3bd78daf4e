#include <ostream>

#include <gtest/gtest.h>

#include "tests/support/Naming.h"
#include "tests/support/PictFiles.h"

using namespace veltrane;
using namespace veltrane::tests;

namespace {

struct Case {
    std::string_view name; ///< the fault that the row catches
    std::string_view file; ///< how it is made and what it holds: tests/data/pict/make.py
    std::string_view rows; ///< reasoned from the recipe, not taken from the decoder
};

void PrintTo(const Case& c, std::ostream* out)
{
    *out << c.file;
}

constexpr std::string_view kSix = "rgb .#r";

constexpr Case kBitmaps[] = {
    { "OddWidthInBits", "v1-bits", "#.#7.# .#.#.#.#.#." },
    { "RunsCopiesAndFiller", "v1-packbits", "64# 36.8#12.8#" },
    { "TwoBitsNotPackedBelowEightBytes", "v2-2bit-raw", ".rgbr bgr.g" },
    { "FourBitsOddWidth", "v2-4bit-odd", "3(.rgb)..b" },
    { "LengthOfTwoBytes", "v2-8bit-word-count", "84r84g84b" },
    { "PaddingLeftOutByThePacker", "v2-8bit-short-padding", "3(rgb)" },
    { "PaletteByValue", "v2-palette-values", "bgrbgrbb" },
    { "DevicePaletteByPlace", "v2-palette-device", "rgbrgbrr" },
    { "PaletteWhoseValuesAreAllZero", "v2-palette-no-values", "rgbrgbrr" },
    { "DirectUnpacked", "v2-32bit-pack1", kSix },
    { "DirectWithoutPadByte", "v2-32bit-pack2", kSix },
    { "DirectPlanes", "v2-32bit-pack4", kSix },
    { "DirectDefaultPacking", "v2-32bit-pack0", kSix },
    { "FourComponentsFirstIsNoColour", "v2-32bit-4comp", kSix },
    { "PlanesAsWideAsTheRowBytes", "v2-32bit-padded", kSix },
    { "SixteenBitsNotPackedBelowEightBytes", "v2-16bit-narrow", kSix },
    { "SixteenBitsUnpacked", "v2-16bit-pack1", kSix },
    { "SixteenBitsRunsOfWords", "v2-16bit-pack3", "rgb .##" },
    { "MaskRegion", "v2-mask", ".g. .#r" },
    { "GrowingRepeatsPixels", "v2-doubled", "2(rrggbb )2(..##rr )" },
    { "SourceCropped", "v2-cropped", "gb #r" },
    { "FrameNotAtZero", "v2-frame-elsewhere", kSix },
    { "Clipped", "v2-clip", "... .#." },
    { "ExtendedHeaderGivesPixelsNotPoints", "v2-extended-144", ".### ...." },
    { "StillUncompressed", "quicktime-raw", kSix },
    { "StillMappedAndMaskedThenDrawingGoesOn", "quicktime-placed", "8. 2(.rrggbb. )2(8. )7.#" },
    { "StillOfAnOpcodeOfItsOwn", "quicktime-uncompressed", kSix },
    { "StillVideo", "quicktime-road-pizza", "2(rrrr..## )2(rrrr##.. )b7g 3(gggg.... )" },
    { "StillCinepak", "quicktime-cinepak", "2(..##rrrr )2(##..rrrr )2(#.#...## )2(#.#.##.. )" },
    { "StillAnimation", "quicktime-animation", "rrg #b." },
    { "StillGraphics", "quicktime-graphics",
        "2(rrrr#### rrrr.... )2(####.#rg .....#rg )2(#...rrrr .#..rrrr ..#.rrrr ...#rrr. )" },
    { "StillPlanar", "quicktime-planar", kSix },
    { "StillOfAnotherCodecOnPaper", "quicktime-png", kSix },
    { "StillUnderItsStandIn", "quicktime-stand-in", kSix },
    { "StillTiff", "quicktime-tiff", kSix },
    { "StillBmpFromTheLowestRow", "quicktime-bmp-4bit", kSix },
    { "StillBmpDownwards", "quicktime-bmp-24bit", kSix },
    { "MessageWithoutAMark", "quicktime-message", kSix },
};

constexpr Case kModes[] = {
    { "Copy", "mode-bits-copy", "bbgg ggbb" },
    { "Or", "mode-bits-or", "bbrr rrbb" },
    { "Xor", "mode-bits-xor", "ccrr rrcc" },
    { "Bic", "mode-bits-bic", "ggrr rrgg" },
    { "NotCopy", "mode-bits-not-copy", "ggbb bbgg" },
    { "NotOr", "mode-bits-not-or", "rrbb bbrr" },
    { "NotXor", "mode-bits-not-xor", "rrcc ccrr" },
    { "NotBic", "mode-bits-not-bic", "rrgg ggrr" },
};

constexpr Case kDrawings[] = {
    { "FrameInsideWithAWidePen", "rect-frame", "8. .6#. 4(.##..##. ).6#. 8." },
    { "FiveVerbs", "rect-verbs", "2(####..## )2(....##.. )2(#.#.#.#. )2(##rrrr## )" },
    { "SameRectangle", "rect-same", "8. 2(.6r. )2(.rr..rr. )2(.6r. )8." },
    { "OvalByPixelCentres", "oval-paint", "..4#.. .6#. 4(8# ).6#. ..4#.." },
    { "OvalFrame", "oval-frame", "..4#.. .#4.#. 4(#6.# ).#4.#. ..4#.." },
    { "SameSharesOneRectangle", "oval-same-of-rect", "##....## #6.# 4(8. )#6.# ##....##" },
    { "RoundCorners", "round-rect", ".6#. 6(8# ).6#." },
    { "ArcsClockwiseFromTheTop", "arc-paint", "....##.. ....###. 2(....#### )2(rrrr.... ).rrr.... ..rr...." },
    { "ArcFrameHasNoRadii", "arc-frame", "4(8. )2(#6.# ).#4.#. ..4#.." },
    { "PolygonByPixelCentres", "polygon-paint", "7#. 6#2. 5#3. 4#4. 3#5. 2#6. #7. 8." },
    { "PolygonFrameIsLines", "polygon-frame", "8. .6#. ..#...#. ...#..#. ....#.#. .....##. ......#. 8." },
    { "RegionWithAHole", "region-paint", "8. 2(.6#. )2(.##..##. )2(.6#. )8." },
    { "RegionFrameFromWithin", "region-frame", "5#... #...#... #...###. 3(#5.#. )7#. 8." },
    { "RegionTurnedOver", "region-invert", "8# 2(#6.# )#..##..# .##..##. 2(.6#. )8." },
    { "FlatLine", "line-flat", "8. ##6. ..##.... ....##.. ......## 8. 8. 8." },
    { "SteepLineOfAWidePen", "line-steep-pen", "2(.##..... )4(..##.... )2(...##... )" },
    { "LinesFromThePen", "line-from", "8# 6(7.# )8#" },
    { "PenPatternLeavesWhatIsUnderWhite", "pen-pattern-or", "2(8r )4(rrbrbrrr )2(8r )" },
    { "PenXor", "pen-xor", "2(6#.. )4(##....## )2(..6# )" },
    { "OriginMovesWhatFollows", "origin", "2(##6. )6(8. )" },
    { "PixelPatternKeepsItsColours", "pixel-pattern", "8. 3(.bgbgbgb .grgrgrg ).bgbgbgb" },
    { "PatternOfOneColour", "dithered-pattern", "g." },
    { "HiliteOnceOnlyWhereBackground", "hilite", "rby#" },
    { "ReservedOpcodesHaveTheirLengths", "reserved", "24#" },
    { "FileHeader", "header-file", "#." },
    { "FileHeaderOfVersionOne", "header-file-v1", "#." },
    { "HeaderOfVersionZero", "header-version-0", "#." },
    { "NoHeaderOpcode", "header-none", "#." },
    { "NoEndMark", "end-missing", "#." },
    { "GarbageBehindTheEnd", "end-garbage", "#." },
};

class Letter : public testing::TestWithParam<Case> { };

TEST_P(Letter, ShowsItsPixels)
{
    const imaging::Bitmap picture = DecodePict(GetParam().file);
    EXPECT_EQ(Letters(picture), Expanded(GetParam().rows));
    EXPECT_TRUE(picture.Opaque());
}

INSTANTIATE_TEST_SUITE_P(PictBitmaps, Letter, testing::ValuesIn(kBitmaps), kByName);
INSTANTIATE_TEST_SUITE_P(PictModes, Letter, testing::ValuesIn(kModes), kByName);
INSTANTIATE_TEST_SUITE_P(PictDrawings, Letter, testing::ValuesIn(kDrawings), kByName);

// Rows of one line whose colours are mixtures.
constexpr Case kMixtures[] = {
    { "ShrinkingTakesTheMean", "v2-halved", "808080 ff0000" },
    { "Blend", "mode-blend", "c0c0c0 404040 c04040 808080" },
    { "AddPin", "mode-add-pin", "c8c8c8 c0c0c0 808080 c88080" },
    { "AddOver", "mode-add-over", "000000 c0c0c0 808080 7f8080" },
    { "SubPin", "mode-sub-pin", "202020 404040 808080 208080" },
    { "Transparent", "mode-transparent", "808080 404040 808080 ff0000" },
    { "AddMax", "mode-add-max", "808080 808080 ffffff ff8080" },
    { "SubOver", "mode-sub-over", "000000 404040 808080 818080" },
    { "AddMin", "mode-add-min", "808080 404040 808080 800000" },
    { "DitherCopyIsACopy", "mode-dither-copy", "808080 404040 ffffff ff0000" },
    { "CopyTakesThePortsColours", "mode-colourised", "ff0000 0000ff 000000 ff00ff" },
    { "SystemPalette", "quicktime-raw-system", "ffffff ff0000 000000" },
    { "GreyCountsFromWhite", "quicktime-raw-grey", "ffffff 7f7f7f 000000" },
    { "OldEightColours", "old-colours", "000000 ffffff dd0806 008011 0000d4 02abea f20884 fcf305" },
};

class Mixture : public testing::TestWithParam<Case> { };

TEST_P(Mixture, ShowsItsColours)
{
    const imaging::Bitmap picture = DecodePict(GetParam().file);
    ASSERT_EQ(picture.Height(), 1);
    std::string colours;
    for (int x = 0; x < picture.Width(); ++x)
        colours += (x == 0 ? "" : " ") + HexOf(picture.Row(0) + 4 * x);
    EXPECT_EQ(colours, GetParam().rows);
}

INSTANTIATE_TEST_SUITE_P(Pict, Mixture, testing::ValuesIn(kMixtures), kByName);

} // namespace
