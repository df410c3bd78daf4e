#include <cstdlib>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/FileTypes.h"
#include "platform/files/FolderItem.h"
#include "platform/files/TextStreams.h"
#include "platform/files/UriList.h"
#include "platform/pictures/Picture.h"
#include "platform/values/Exceptions.h"
#include "tests/support/Naming.h"
#include "tests/support/Scratch.h"

using namespace veltrane;
using tests::Scratch;

namespace {

struct PathCase {
    std::string_view name, path, shown, parent;
};

constexpr PathCase kPaths[] = {
    { "Plain", "/a/b.png", "b.png", "/a" },
    { "FolderSlash", "/a/b/", "b", "/a" },
    { "TopLevel", "/b", "b", "/" },
    { "Root", "/", "/", "" },
    { "NoUtf8", "/a/\xFF\n[*].gif", "\xFF\n[*].gif", "/a" },
};

class Paths : public testing::TestWithParam<PathCase> { };

TEST_P(Paths, NameAndParent)
{
    const auto item = FolderItem::FromPath(GetParam().path);
    EXPECT_EQ(item->Name().Bytes(), GetParam().shown);
    const auto parent = item->Parent();
    EXPECT_EQ(parent ? parent->Path() : "", GetParam().parent);
}

INSTANTIATE_TEST_SUITE_P(FolderItem, Paths, testing::ValuesIn(kPaths), tests::kByName);

struct AddressCase {
    std::string_view name, address;
    const char* path; // null: no local file
};

constexpr AddressCase kAddresses[] = {
    { "ThreeSlashes", "file:///a/b.png", "/a/b.png" },
    { "OneSlash", "file:/a/b.png", "/a/b.png" },
    { "LocalHost", "FILE://LocalHost/a", "/a" },
    { "OtherHost", "file://elsewhere.invalid/a", nullptr },
    { "OtherScheme", "http://localhost/a", nullptr },
    { "RawByteEscaped", "file:///a%FF%20%41%25", "/a\xFF A%" },
    { "CutEscape", "file:///a%4", nullptr },
    { "BadEscape", "file:///a%4g", nullptr },
    { "NulByte", "file:///a%00b", nullptr },
    { "HashIsNotTheName", "file:///a#b", "/a" },
    { "Relative", "file:a", nullptr },
    { "Nothing", "", nullptr },
};

class Addresses : public testing::TestWithParam<AddressCase> { };

TEST_P(Addresses, BecomeLocalPaths)
{
    const auto path = LocalPath(GetParam().address);
    EXPECT_EQ(path.value_or("(none)"), GetParam().path != nullptr ? GetParam().path : "(none)");
}

INSTANTIATE_TEST_SUITE_P(UriList, Addresses, testing::ValuesIn(kAddresses), tests::kByName);

constexpr std::pair<std::string_view, std::string_view> kPathsAndAddresses[] = {
    { "/a/b-._~.png", "file:///a/b-._~.png" },
    { "/AZaz09/@[`{", "file:///AZaz09/%40%5B%60%7B" }, // the neighbours of the letters
    { "/100%41 #?&;", "file:///100%2541%20%23%3F%26%3B" },
    { "/caf\xE9 \xFF\n\x01", "file:///caf%E9%20%FF%0A%01" },
    { "//double", "file:////double" },
};

} // namespace

TEST(UriList, AddressesOfPathsHoldAnyByteAndLeadBack)
{
    for (const auto& [path, address] : kPathsAndAddresses) {
        EXPECT_EQ(FileAddress(path), address);
        EXPECT_EQ(LocalPath(address), path);
    }
    std::string all = "/";
    for (int byte = 1; byte < 256; ++byte)
        all += static_cast<char>(byte);
    EXPECT_EQ(LocalPath(FileAddress(all)), all);
}

TEST(FolderItem, ChildTakesNamesAndNothingElse)
{
    const auto folder = FolderItem::FromPath("/a");
    EXPECT_EQ(folder->Child("b c")->Path(), "/a/b c");
    EXPECT_EQ(FolderItem::FromPath("/")->Child("b")->Path(), "/b");
    for (const std::string_view bad : { std::string_view(""), std::string_view("."), std::string_view(".."),
             std::string_view("a/b"), std::string_view("a\0b", 3) })
        EXPECT_FALSE(folder->Child(String(bad))) << bad;
    EXPECT_FALSE(FolderItem::FromPath(""));
}

TEST(FolderItem, ExistsFollowsLinks)
{
    const Scratch folder;
    folder.Write("there", "x");
    ASSERT_EQ(symlink("there", folder.Path("good").c_str()), 0);
    ASSERT_EQ(symlink("gone", folder.Path("dangling").c_str()), 0);
    const auto exists
        = [&](std::string_view name) { return FolderItem::FromPath(folder.Path(name))->Exists(); };
    EXPECT_TRUE(exists("there"));
    EXPECT_TRUE(exists("good"));
    EXPECT_FALSE(exists("dangling"));
    EXPECT_FALSE(exists("there/below"));
    EXPECT_FALSE(exists(std::string(300, 'x')));
}

TEST(SpecialFolder, PreferencesIsMadeWhereTheUserWantsIt)
{
    const Scratch folder;
    setenv("XDG_CONFIG_HOME", folder.Path("deep/config").c_str(), 1);
    EXPECT_EQ(SpecialFolder::Preferences()->Path(), folder.Path("deep/config"));
    EXPECT_TRUE(std::filesystem::is_directory(folder.Path("deep/config")));
    setenv("XDG_CONFIG_HOME", "relative/is/ignored", 1);
    setenv("HOME", folder.Path().c_str(), 1);
    EXPECT_EQ(SpecialFolder::Preferences()->Path(), folder.Path(".config"));
    unsetenv("XDG_CONFIG_HOME");
}

TEST(FileTypes, FitByExtensionWithoutCase)
{
    RuntimeRegisterFileType("test/one", "", "", ".one;.uno", "");
    RuntimeRegisterFileType("test/two", "", "", ".two", "");
    using filetypes::FitsByName;
    EXPECT_TRUE(FitsByName("test/one;test/two;", "A.UNO"));
    EXPECT_TRUE(FitsByName("test/two", "a.b.two"));
    EXPECT_FALSE(FitsByName("test/one;", "a.two")) << "registered, but not accepted here";
    EXPECT_FALSE(FitsByName("test/one;;", "a")) << "an empty name must stand for nothing";
    EXPECT_FALSE(FitsByName("test/one;", ".one")) << "a hidden file has no extension";
    EXPECT_FALSE(FitsByName("test/one;", "aone"));
    RuntimeDeregisterFileType("test/one");
    EXPECT_FALSE(FitsByName("test/one;", "a.one"));
}

TEST(TextStreams, ReadEveryLineEnd)
{
    const Scratch folder;
    // The carriage return is the last byte of the reader's first block of 64 KiB.
    const std::string block(65'535, 'b');
    folder.Write("t", "\xEF\xBB\xBFlf\ncrlf\r\ncr\r\nlast");
    folder.Write("block", block + "\r\nnext");
    const auto lines = [&](std::string_view name) {
        const auto stream = TextInputStream::Open(FolderItem::FromPath(folder.Path(name)));
        std::vector<std::string> read;
        while (!stream->Eof())
            read.emplace_back(stream->ReadLine(nullptr).Bytes());
        return read;
    };
    EXPECT_EQ(lines("t"), (std::vector<std::string> { "lf", "crlf", "cr", "last" }));
    EXPECT_EQ(lines("block"), (std::vector<std::string> { block, "next" }));
}

TEST(TextStreams, RefuseWithTheSystemsNumberAndNeverGiveNil)
{
    const Scratch folder;
    std::filesystem::create_directory(folder.Path("dir"));
    const auto missing = FolderItem::FromPath(folder.Path("missing"));
    const auto number = [](const auto& attempt) -> std::int64_t {
        try {
            attempt();
        } catch (const IOException& failure) {
            return failure.ErrorNumber();
        }
        return 0;
    };
    EXPECT_EQ(number([&] { (void)TextInputStream::Open(missing); }), ENOENT);
    EXPECT_EQ(missing->LastErrorCode(), ENOENT);
    const auto dir = FolderItem::FromPath(folder.Path("dir"));
    EXPECT_EQ(number([&] { (void)TextInputStream::Open(dir); }), EISDIR);
    EXPECT_EQ(number([&] { (void)TextOutputStream::Create(dir); }), EISDIR);
    EXPECT_THROW((void)TextOutputStream::Create(nullptr), NilObjectException);
}

TEST(TextStreams, WriteWholeAtTheEndOfLinks)
{
    const Scratch folder;
    folder.Write("kept", "before");
    ASSERT_EQ(symlink("second", folder.Path("first").c_str()), 0);
    ASSERT_EQ(symlink(folder.Path("kept").c_str(), folder.Path("second").c_str()), 0);
    const auto file = FolderItem::FromPath(folder.Path("first"));
    TextOutputStream::Create(file)->WriteLine("dropped without a close");
    EXPECT_EQ(folder.Read("kept"), "before");
    const auto stream = TextOutputStream::Create(file);
    stream->WriteLine("after");
    stream->Close();
    EXPECT_EQ(folder.Read("kept"), "after\n");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("first")));
    EXPECT_EQ(folder.Names(), "first kept second");
}

TEST(Picture, RefusesInTheOrderThatIsPromised)
{
    const auto message = [](const auto& attempt) -> std::string {
        try {
            attempt();
        } catch (const RuntimeException& failure) {
            return std::string(failure.ClassName()) + " " + std::string(failure.Message().Bytes());
        }
        return "";
    };
    const std::string range = "OutOfBoundsException Width/Height needs to be in the range 1-32767";
    for (const auto& [width, height] : { std::pair(0, 1), { 1, 0 }, { 32768, 1 }, { 1, 32768 }, { -1, 5 } })
        EXPECT_EQ(message([w = width, h = height] { (void)New<Picture>(w, h); }), range) << width;
    const auto picture = New<Picture>(32767, 1);
    EXPECT_EQ(message([&] { picture->Save(nullptr, FormatCodePNG, 101); }),
        "OutOfBoundsException The compression value is out of range, valid values are 0-100");
    EXPECT_EQ(message([&] { picture->Save(nullptr, FormatCodePNG, 100); }),
        "NilObjectException The folder item passed cannot be nil");
    EXPECT_EQ(message([] { (void)Picture::Open(nullptr); }), "NilObjectException ");
}

TEST(Picture, CopyBehavesAsACopy)
{
    const auto source = New<Picture>(3, 2);
    const auto surface = source->Graphics();
    surface->ForeColor(0x112233);
    surface->FillRect(1, 0, 1, 2);
    const auto copy = New<Picture>(3, 2);
    constexpr double kOwn = Graphics::kOwnSize;
    copy->Graphics()->DrawPicture(source, 0, 0, kOwn, kOwn, 0, 0, kOwn, kOwn);
    surface->FillRect(0, 0, 3, 2);
    const auto pixel = [&](int x) {
        return std::vector(copy->Pixels().Row(1) + 4 * x, copy->Pixels().Row(1) + 4 * x + 4);
    };
    EXPECT_EQ(pixel(0), (std::vector<std::uint8_t> { 0, 0, 0, 0 })) << "written behind the copy";
    EXPECT_EQ(pixel(1), (std::vector<std::uint8_t> { 0x11, 0x22, 0x33, 255 }));
}
