#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/Fault.h"
#include "imaging/bits/Processor.h"
#include "imaging/jpeg/Jpeg.h"
#include "imaging/jpeg/baseline/EntropyCodedSegment.h"
#include "imaging/jpeg/baseline/Scan.h"
#include "tests/support/Naming.h"
#include "tests/support/ReadData.h"

using namespace veltrane;
using imaging::Bitmap;
using imaging::kJpeg;
namespace baseline = imaging::jpeg::baseline;

namespace {

using Bytes = std::vector<std::uint8_t>;

// Size and pixels, or the refusal: all that a user could tell one decoder from another by.
std::string Outcome(imaging::Bytes file)
{
    try {
        const Bitmap picture = kJpeg.decode(file, imaging::Limits { .maxSide = 4096 });
        std::string told = std::to_string(picture.Width()) + 'x' + std::to_string(picture.Height()) + ' ';
        for (int y = 0; y < picture.Height(); ++y)
            told.append(reinterpret_cast<const char*>(picture.Row(y)), picture.Stride());
        return told;
    } catch (const imaging::Fault& fault) {
        return fault.what();
    }
}

// An old processor's pictures come from the library alone.
std::string LibrarysOutcome(imaging::Bytes file)
{
    const imaging::OldProcessor old;
    return Outcome(file);
}

class Collected final : public imaging::Sink {
public:
    void Write(imaging::Bytes bytes) override { all.insert(all.end(), bytes.begin(), bytes.end()); }
    Bytes all;
};

// ---- Pictures, whole

struct Drawn {
    std::string_view name;
    int width, height;
    int quality; ///< from 90 on every pixel has its own chroma
    int noise; ///< how far from smooth; below 0: white all over
};

constexpr Drawn kDrawn[] = {
    { "TooNarrowToSpreadChroma", 3, 20, 80, 40 },
    { "NarrowestOneRow", 16, 1, 80, 9 },
    { "LastChromaSampleHalfUsed", 17, 15, 80, 40 },
    { "OneRowBehindAWholeUnit", 33, 17, 80, 40 },
    { "LastRowOfAUnitAlone", 48, 32, 80, 9 },
    { "EvenAreasOnly", 100, 70, 5, 0 },
    { "FewCoefficients", 100, 70, 40, 3 },
    { "AllCoefficientsAndLongCodes", 131, 67, 100, 255 },
    { "HalfChromaOfNoise", 131, 67, 89, 255 },
    { "MoreThanIsHeldAtOnce", 400, 301, 96, 255 },
    { "PastTheEndsOfTheScaleOfSamples", 64, 64, 1, 255 },
};

Bitmap Draw(const Drawn& how)
{
    Bitmap picture = Bitmap::Uninitialised(how.width, how.height);
    std::uint8_t* at = picture.Writable();
    std::uint32_t random = 1;
    for (int y = 0; y < how.height; ++y)
        for (int x = 0; x < how.width; ++x, at += 4)
            for (int i = 0; i < 4; ++i) {
                random = random * 1664525 + 1013904223;
                const int smooth = how.noise < 0 ? 255 : (i + 1) * x + (3 - i) * y;
                const int away = how.noise <= 0 ? 0 : static_cast<int>(random >> 16) % (how.noise + 1);
                at[i] = static_cast<std::uint8_t>(i == 3 ? 255 : (smooth + away) % 256);
            }
    picture.Opaque(true);
    return picture;
}

class BaselineJpeg : public testing::TestWithParam<Drawn> { };

TEST_P(BaselineJpeg, IsDecodedAsTheLibraryWould)
{
    Collected file;
    kJpeg.encode(Draw(GetParam()), GetParam().quality, file);
    EXPECT_TRUE(Outcome(file.all) == LibrarysOutcome(file.all));
}

INSTANTIATE_TEST_SUITE_P(Jpeg, BaselineJpeg, testing::ValuesIn(kDrawn), tests::kByName);

// ---- To the end

// What stands in a file of one scan, as far as a frame tells it. Trusts the file.
baseline::Frame FrameIn(imaging::Bytes file)
{
    baseline::Frame frame;
    std::array<std::array<std::uint16_t, baseline::kBlockSize>, 4> quantisation {};
    std::array<baseline::HuffmanSpec, 32> tables {};
    for (std::size_t at = 2; frame.scan.empty();
         at += 2 + static_cast<std::size_t>(file[at + 2] << 8 | file[at + 3])) {
        const std::uint8_t* const segment = file.data() + at + 4;
        const auto size = static_cast<std::size_t>(file[at + 2] << 8 | file[at + 3]) - 2;
        switch (file[at + 1]) {
        case 0xDB: // their order does not matter to who only reads codes
            std::copy_n(segment + 1, baseline::kBlockSize, quantisation[segment[0]].begin());
            break;
        case 0xC4:
            std::copy_n(segment + 1, 16, tables[segment[0]].counts.begin() + 1);
            std::copy_n(segment + 17, size - 17, tables[segment[0]].symbols.begin());
            break;
        case 0xC0:
            frame.height = segment[1] << 8 | segment[2];
            frame.width = segment[3] << 8 | segment[4];
            for (const std::uint8_t* c = segment + 6; c < segment + size; c += 3)
                frame.components.push_back({ c[1] >> 4, c[1] & 15, quantisation[c[2]], {}, {} });
            break;
        case 0xDD: frame.restartInterval = static_cast<unsigned>(segment[0] << 8 | segment[1]); break;
        case 0xDA:
            for (std::size_t i = 0; i < segment[0]; ++i) {
                frame.components[i].dc = tables[segment[2 + 2 * i] >> 4];
                frame.components[i].ac = tables[16 | (segment[2 + 2 * i] & 15)];
            }
            frame.scan = file.subspan(at + 4 + size);
            break;
        default: break;
        }
    }
    return frame;
}

class PlainJpeg : public testing::TestWithParam<std::string_view> { };

constexpr auto kByFile = [](const auto& row) {
    std::string name(row.param);
    std::erase(name, '-');
    return name;
};

// The library would make up for what ours gives up without need, at the price of a second decoding.
TEST_P(PlainJpeg, NeedsNoHelp)
{
    const Bytes file = tests::ReadData("jpeg/" + std::string(GetParam()) + ".jpg");
    const baseline::Frame frame = FrameIn(file);
    baseline::Scan scan(frame);
    ASSERT_TRUE(scan.Valid());
    constexpr std::size_t kStride = 128;
    Bytes samples(kStride * 16);
    const std::vector<baseline::PlaneRows> targets(frame.components.size(), { samples.data(), kStride });
    const int mcuRows = 8 * frame.components.front().down;
    for (int y = 0; y < frame.height; y += mcuRows)
        EXPECT_TRUE(scan.DecodeRow(targets)) << "row " << y;
}

constexpr std::string_view kPlain[]
    = { "baseline-444", "baseline-422", "baseline-420", "grey", "restart", "restart-420", "no-end-mark" };

INSTANTIATE_TEST_SUITE_P(Jpeg, PlainJpeg, testing::ValuesIn(kPlain), kByFile);

// ---- Numbers that overflow

// What the library takes a short cut for: even areas, and rows that are all alike.
constexpr Drawn kSteep[] = {
    { "EvenAreas", 40, 40, 100, -1 },
    { "EvenAreasJustTooFar", 40, 40, 30, -1 },
    { "RowsAlikeWithFewCoefficients", 40, 1, 100, 0 },
    { "RowsAlikeJustTooFar", 40, 1, 30, 255 },
    { "RowsAlikeWithManyCoefficients", 40, 1, 100, 255 },
    { "ManyCoefficients", 40, 40, 100, 255 },
};

class SteepJpeg : public testing::TestWithParam<Drawn> { };

TEST_P(SteepJpeg, IsDecodedAsTheLibraryWould)
{
    Collected file;
    kJpeg.encode(Draw(GetParam()), GetParam().quality, file);
    constexpr std::uint8_t kTable[] { 0xFF, 0xDB, 0, 67 };
    for (auto at = file.all.begin();
         (at = std::search(at, file.all.end(), std::begin(kTable), std::end(kTable))) != file.all.end();)
        at = std::fill_n(at + 5, 64, std::uint8_t { 255 });
    EXPECT_TRUE(Outcome(file.all) == LibrarysOutcome(file.all));
}

INSTANTIATE_TEST_SUITE_P(Jpeg, SteepJpeg, testing::ValuesIn(kSteep), tests::kByName);

// ---- Pictures, cut and changed

// Whatever is cut off or changed, both make the same of it: also where ours gives up in the middle and the
// library goes on.
class ChangedBaselineJpeg : public testing::TestWithParam<std::string_view> { };

TEST_P(ChangedBaselineJpeg, IsDecodedAsTheLibraryWould)
{
    const Bytes whole = tests::ReadData("jpeg/" + std::string(GetParam()) + ".jpg");
    EXPECT_TRUE(Outcome(whole) == LibrarysOutcome(whole));
    for (std::size_t at = 2; at < whole.size(); at += 3) {
        Bytes changed = whole;
        changed[at] = static_cast<std::uint8_t>(changed[at] ^ (1u << at % 8));
        EXPECT_TRUE(Outcome(changed) == LibrarysOutcome(changed)) << "changed at " << at;
        const auto cut = imaging::Bytes(whole).first(at);
        EXPECT_TRUE(Outcome(cut) == LibrarysOutcome(cut)) << "cut at " << at;
    }
}

constexpr std::string_view kChanged[]
    = { "baseline-444", "baseline-422", "baseline-420", "grey", "restart", "restart-420", "fill-bytes" };

INSTANTIATE_TEST_SUITE_P(Jpeg, ChangedBaselineJpeg, testing::ValuesIn(kChanged), kByFile);

} // namespace

// ---- Coded bytes

// Every length around the room there is: a mark may be the last byte that still fits in.
TEST(EntropyCodedSegment, HandsOutAllBytesUpToAMarkerWhereverItLies)
{
    constexpr std::size_t kUnit = 40, kShortest = 16'200, kLongestCode = 16'600;
    Bytes file, plain;
    for (std::size_t i = 0; i < kShortest; ++i) {
        plain.push_back(i % 97 == 0 ? 0xFF : static_cast<std::uint8_t>(i));
        file.push_back(plain.back());
        if (plain.back() == 0xFF)
            file.push_back(0);
    }
    for (; plain.size() < kLongestCode; plain.push_back(7), file.push_back(7)) {
        Bytes scan = file;
        for (const int byte : { 0xFF, 0xD3, 0x55 })
            scan.push_back(static_cast<std::uint8_t>(byte));
        baseline::EntropyCodedSegment bytes(scan, kUnit);
        baseline::BitBuffer bits = bytes.Start();
        std::size_t wrong = 0;
        for (const std::uint8_t byte : plain) {
            wrong += !bytes.Ready(bits);
            bits.Fill();
            wrong += bits.front >> 56 != byte;
            bits.Drop(8);
        }
        ASSERT_EQ(wrong, 0) << plain.size();
        ASSERT_TRUE(bytes.Within(bits));
        ASSERT_TRUE(bytes.SkipRestartMarker(bits, 3)) << plain.size();
    }
}

TEST(EntropyCodedSegment, PassesTheMarkerThatIsNextAndNoOther)
{
    const Bytes scan { 0x12, 0xFF, 0xFF, 0xD0, 0x34, 0xFF, 0xD9 };
    baseline::EntropyCodedSegment bytes(scan, 8);
    baseline::BitBuffer bits = bytes.Start();
    ASSERT_TRUE(bytes.Ready(bits));
    bits.Fill();
    EXPECT_FALSE(bytes.SkipRestartMarker(bits, 0)) << "a byte is left";
    bits.Drop(5);
    EXPECT_TRUE(bytes.SkipRestartMarker(bits, 0)) << "what is left of a byte is padding";
    bits = bytes.Start();
    ASSERT_TRUE(bytes.Ready(bits));
    bits.Fill();
    EXPECT_EQ(bits.front >> 56, 0x34);
    bits.Drop(9);
    EXPECT_FALSE(bytes.Within(bits)) << "a bit that was not there";
}
