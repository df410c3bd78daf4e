#include <limits>

#include <gtest/gtest.h>

#include "platform/values/Exceptions.h"
#include "platform/values/String.h"
#include "tests/support/Naming.h"

using namespace veltrane;

namespace {

struct CutCase {
    std::string_view name;
    const char* source;
    std::int64_t count;
    std::string_view left, mid, right;
};

// mid is Mid(source, count).
constexpr CutCase kCuts[] = {
    { "NothingOfIt", "abc", 0, "", "abc", "" },
    { "CharactersNotBytes", "né🙂x", 2, "né", "é🙂x", "🙂x" },
    { "OneBehindTheLast", "abc", 4, "abc", "", "abc" },
    { "FarBehind", "abc", 99, "abc", "", "abc" },
    { "Negative", "abc", -1, "", "abc", "" },
    { "LoneByteIsACharacter",
        "a\xFF"
        "b\xE9",
        2, "a\xFF",
        "\xFF"
        "b\xE9",
        "b\xE9" },
    { "CutSequenceIsBytes", "\xF0\x9F\x99", 1, "\xF0", "\xF0\x9F\x99", "\x99" },
    { "OverlongIsTwoBytes", "\xC0\x80", 1, "\xC0", "\xC0\x80", "\x80" },
    { "Empty", "", 3, "", "", "" },
};

class Cut : public testing::TestWithParam<CutCase> { };

TEST_P(Cut, LeftMidRight)
{
    const CutCase& c = GetParam();
    EXPECT_EQ(Left(c.source, c.count).Bytes(), c.left);
    EXPECT_EQ(Mid(c.source, c.count).Bytes(), c.mid);
    EXPECT_EQ(Right(c.source, c.count).Bytes(), c.right);
}

INSTANTIATE_TEST_SUITE_P(String, Cut, testing::ValuesIn(kCuts), tests::kByName);

struct ReplaceCase {
    std::string_view name;
    const char *source, *old, *fresh;
    std::string_view first, all;
    std::int64_t position;
};

constexpr ReplaceCase kReplaces[] = {
    { "FirstOfTwo", "twice.gif.gif", ".gif", nullptr, "twice.gif", "twice", 6 },
    { "PassesOverCase", "PHOTO.JPG", ".jpg", nullptr, "PHOTO", "PHOTO", 6 },
    { "OnlyAsciiCase", "É.é", "é", "e", "É.e", "É.e", 3 },
    { "NotThere", "scan.tif", ".gif", nullptr, "scan.tif", "scan.tif", 0 },
    { "NoSecondPass", "aaab", "ab", "b", "aab", "aab", 3 },
    { "GrowsWithoutEnd", "aa", "a", "aa", "aaa", "aaaa", 1 },
    { "EmptyIsNowhere", "abc", "", "x", "abc", "abc", 0 },
    { "WholeIsEmpty", ".gif", ".gif", nullptr, "", "", 1 },
    { "PositionCountsCharacters", "éé=x", "=", nullptr, "ééx", "ééx", 3 },
};

class Replacing : public testing::TestWithParam<ReplaceCase> { };

TEST_P(Replacing, FirstAllAndPosition)
{
    const ReplaceCase& c = GetParam();
    EXPECT_EQ(Replace(c.source, c.old, c.fresh).Bytes(), c.first);
    EXPECT_EQ(ReplaceAll(c.source, c.old, c.fresh).Bytes(), c.all);
    EXPECT_EQ(InStr(c.source, 0, c.old), c.position);
}

INSTANTIATE_TEST_SUITE_P(String, Replacing, testing::ValuesIn(kReplaces), tests::kByName);

struct NumberCase {
    const char* text;
    double value;
    std::int64_t integer;
};

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr NumberCase kNumbers[] = {
    { "70", 70, 70 },
    { " \t+12.9kg", 12.9, 12 },
    { "-3.7", -3.7, -3 },
    { "abc", 0, 0 },
    { "", 0, 0 },
    { "-", 0, 0 },
    { "+-5", 0, 0 },
    { "nan", 0, 0 },
    { "-inf", 0, 0 },
    { ".5", .5, 0 },
    { "0x10", 0, 0 },
    { "1e400", kInfinity, INT64_MAX },
    { "-1e400", -kInfinity, INT64_MIN },
    { "1e-400", 0, 0 },
    { "99999999999999999999", 1e20, INT64_MAX },
};

} // namespace

TEST(String, ValNeverRaisesAndToIntegerStaysInRange)
{
    for (const NumberCase& c : kNumbers) {
        EXPECT_EQ(Val(c.text), c.value) << c.text;
        EXPECT_EQ(ToInteger(Val(c.text)), c.integer) << c.text;
    }
    EXPECT_EQ(ToInteger(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(String, ComparisonFollowsOneRule)
{
    EXPECT_EQ(Compare(nullptr, ""), 0);
    EXPECT_EQ(Compare(".JPG", ".jpg"), 0);
    EXPECT_NE(Compare("é", "É"), 0);
    EXPECT_LT(Compare("ab", "abc"), 0);
    EXPECT_GT(Compare("\xFF", "a"), 0) << "bytes are unsigned";
}

TEST(String, StrIsPlainDigits)
{
    EXPECT_EQ(Str(70).Bytes(), "70");
    EXPECT_EQ(Str(INT64_MIN).Bytes(), "-9223372036854775808");
    EXPECT_THROW((void)Str(1, "#,##0"), UnsupportedOperationException);
    EXPECT_EQ(InStr("a=b=c", 3, "="), 4) << "the search begins at the start position";
}
