#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Exceptions.h"
#include "platform/codecs/Processor.h"
#include "platform/codecs/jpeg/Jpeg.h"
#include "platform/codecs/jpeg/baseline/EntropyBytes.h"
#include "tests/Naming.h"
#include "tests/ReadData.h"

using namespace veltrane;
using codecs::Bitmap;
using codecs::kJpeg;
namespace baseline = codecs::jpeg::baseline;

namespace {

using Bytes = std::vector<std::uint8_t>;

// Size and pixels, or the refusal: all that a user could tell one decoder from another by.
std::string Outcome(codecs::Bytes file)
{
    try {
        const Bitmap picture = kJpeg.decode(file, codecs::Limits { .maxSide = 4096 });
        std::string told = std::to_string(picture.Width()) + 'x' + std::to_string(picture.Height()) + ' ';
        for (int y = 0; y < picture.Height(); ++y)
            told.append(reinterpret_cast<const char*>(picture.Row(y)), picture.Stride());
        return told;
    } catch (const RuntimeException& refusal) {
        return std::string(refusal.ClassName()) + ": " + std::string(refusal.Message().Bytes());
    }
}

// An old processor's pictures come from the library alone.
std::string LibrarysOutcome(codecs::Bytes file)
{
    const codecs::OldProcessor old;
    return Outcome(file);
}

class Collected final : public codecs::Sink {
public:
    void Write(codecs::Bytes bytes) override { all.insert(all.end(), bytes.begin(), bytes.end()); }
    Bytes all;
};

// ---- Pictures, whole

struct Drawn {
    std::string_view name;
    int width, height;
    int quality; ///< from 90 on every pixel has its own chroma
    int noise; ///< how far from smooth
};

constexpr Drawn kDrawn[] = {
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
                const int smooth = (i + 1) * x + (3 - i) * y;
                const int away = how.noise == 0 ? 0 : static_cast<int>(random >> 16) % (how.noise + 1);
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
        const auto cut = codecs::Bytes(whole).first(at);
        EXPECT_TRUE(Outcome(cut) == LibrarysOutcome(cut)) << "cut at " << at;
    }
}

constexpr std::string_view kChanged[]
    = { "baseline-444", "baseline-422", "baseline-420", "grey", "restart", "restart-420", "fill-bytes" };

INSTANTIATE_TEST_SUITE_P(Jpeg, ChangedBaselineJpeg, testing::ValuesIn(kChanged), [](const auto& row) {
    std::string name(row.param);
    std::erase(name, '-');
    return name;
});

} // namespace

// ---- Coded bytes

// Every length around the room there is: a mark may be the last byte that still fits in.
TEST(EntropyBytes, HandsOutAllBytesUpToAMarkerWhereverItLies)
{
    constexpr std::size_t kUnit = 40, kShortest = 16'200, kLongest = 16'600;
    Bytes file, plain;
    for (std::size_t i = 0; i < kShortest; ++i) {
        plain.push_back(i % 97 == 0 ? 0xFF : static_cast<std::uint8_t>(i));
        file.push_back(plain.back());
        if (plain.back() == 0xFF)
            file.push_back(0);
    }
    for (; plain.size() < kLongest; plain.push_back(7), file.push_back(7)) {
        Bytes scan = file;
        for (const int byte : { 0xFF, 0xD3, 0x55 })
            scan.push_back(static_cast<std::uint8_t>(byte));
        baseline::EntropyBytes bytes(scan, kUnit);
        baseline::Bits bits = bytes.Start();
        std::size_t wrong = 0;
        for (const std::uint8_t byte : plain) {
            wrong += !bytes.Ready(bits);
            bits.Fill();
            wrong += bits.front >> 56 != byte;
            bits.Drop(8);
        }
        ASSERT_EQ(wrong, 0) << plain.size();
        ASSERT_TRUE(bytes.Had(bits));
        ASSERT_FALSE(bytes.PassRestart(bits, 2)) << "of another number";
    }
}

TEST(EntropyBytes, PassesTheMarkerThatIsNextAndNoOther)
{
    const Bytes scan { 0x12, 0xFF, 0xFF, 0xD0, 0x34, 0xFF, 0xD9 };
    baseline::EntropyBytes bytes(scan, 8);
    baseline::Bits bits = bytes.Start();
    ASSERT_TRUE(bytes.Ready(bits));
    bits.Fill();
    EXPECT_FALSE(bytes.PassRestart(bits, 0)) << "a byte is left";
    bits.Drop(5);
    EXPECT_TRUE(bytes.PassRestart(bits, 0)) << "what is left of a byte is padding";
    bits = bytes.Start();
    ASSERT_TRUE(bytes.Ready(bits));
    bits.Fill();
    EXPECT_EQ(bits.front >> 56, 0x34);
    bits.Drop(9);
    EXPECT_FALSE(bytes.Had(bits)) << "a bit that was not there";
}
