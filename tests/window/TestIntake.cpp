#include <filesystem>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "imaging/Codec.h"
#include "platform/files/FileReader.h"
#include "platform/values/Exceptions.h"
#include "tests/support/Naming.h"
#include "tests/support/ProgramRun.h"
#include "window/WVeltrane.h"

using namespace veltrane;
using tests::ProgramRun;

namespace {

enum Boxes { kNone = 0, kJpg = 1, kPng = 2, kBoth = 3 };

constexpr const char* kSettings[] = {
    "ConversionJPG=ko\nConversionPNG=ko\n",
    "ConversionJPG=OK\nConversionPNG=ko\n",
    "ConversionJPG=ko\nConversionPNG=OK\n",
    "ConversionJPG=OK\nConversionPNG=OK\n",
};

struct NameCase {
    std::string_view name, file;
    Boxes boxes;
    std::string_view written; ///< sorted, parted by blanks
};

// The content is always a plain picture: the name alone decides what is written, and how it is called.
constexpr NameCase kNames[] = {
    { "Gif", "photo.gif", kBoth, "photo.jpg photo.png" },
    { "OnlyJpg", "photo.bmp", kJpg, "photo.jpg" },
    { "OnlyPng", "photo.bmp", kPng, "photo.png" },
    { "NothingWanted", "photo.gif", kNone, "" },
    { "PngGetsNoPng", "photo.png", kBoth, "photo.jpg" },
    { "PngAlone", "photo.png", kPng, "" },
    { "JpgGetsNoJpg", "photo.jpg", kBoth, "photo.png" },
    { "JpgAlone", "photo.jpg", kJpg, "" },
    { "JpegIsNotJpg", "photo.jpeg", kBoth, "photo.jpg photo.png" },
    { "TifStays", "scan.tif", kBoth, "scan.tif.jpg scan.tif.png" },
    { "NoSuffix", "readme", kBoth, "readme.jpg readme.png" },
    { "ShorterThanASuffix", "a", kBoth, "a.jpg a.png" },
    { "SuffixInTheMiddle", "old.png.copy", kBoth, "old.copy.jpg old.copy.png" },
    { "FirstOfTwo", "twice.gif.gif", kBoth, "twice.gif.jpg twice.gif.png" },
    { "EachOnce", "a.jpg.b.tif", kBoth, "a.b.tif.jpg a.b.tif.png" },
    { "MadeByAnEarlierCut", "x.p.jpgng", kBoth, "x.jpg x.png" },
    { "JpgIsCutBeforeJpeg", "x.j.jpgpeg", kPng, "x.png" },
    { "NothingButASuffix", ".gif", kBoth, ".jpg .png" },
    { "UpperCase", "PHOTO.PNG", kBoth, "PHOTO.jpg" },
    { "UpperCaseJpeg", "PHOTO.JPG", kBoth, "PHOTO.png" },
    { "NoUtf8", "\xE9t\xE9.gif", kBoth, "\xE9t\xE9.jpg \xE9t\xE9.png" },
    { "SignsOfOtherLanguages", "<b>%41#&?[*]'\"\n.gif", kPng, "<b>%41#&?[*]'\"\n.png" },
};

class Names : public testing::TestWithParam<NameCase> { };

TEST_P(Names, DecideWhatIsWritten)
{
    const NameCase& c = GetParam();
    ProgramRun run;
    run.Settings(kSettings[c.boxes]);
    run.Plain(c.file);
    const std::string source = run.pictures.Read(c.file);
    // Twice: the second time over the files of the first.
    run.Open(c.file);
    run.Open(c.file);
    run.body.user.push_back([&] {
        EXPECT_EQ(WVeltrane()->nbFichiers, 2) << "files taken in are counted, not files written";
        EXPECT_EQ(WVeltrane()->Title().Bytes(), "Veltrane V2 : " + std::string(c.file));
    });
    run.Go();
    EXPECT_EQ(run.Messages(), std::vector<std::string> {});
    EXPECT_EQ(run.pictures.Read(c.file), source);
    ASSERT_EQ(unlink(run.pictures.Path(c.file).c_str()), 0);
    EXPECT_EQ(run.pictures.Names(), c.written);
}

INSTANTIATE_TEST_SUITE_P(Intake, Names, testing::ValuesIn(kNames), tests::kByName);

std::string_view FormatOf(const std::string& path)
{
    const FileBytes head = ReadFile(path, imaging::kProbeBytes);
    const imaging::Codec* const codec = imaging::Find(head.View());
    return codec != nullptr ? codec->name : "nothing";
}

} // namespace

TEST(Intake, CopiesAreOfTheFormatThatTheirNameSays)
{
    ProgramRun run;
    run.Settings(kSettings[kBoth]);
    run.Plain("a.gif", 5, 7);
    run.Open("a.gif");
    run.Go();
    EXPECT_EQ(FormatOf(run.pictures.Path("a.png")), "PNG");
    EXPECT_EQ(FormatOf(run.pictures.Path("a.jpg")), "JPEG");
    const auto copy = Picture::Open(FolderItem::FromPath(run.pictures.Path("a.png")));
    ASSERT_EQ(copy->Width(), 5);
    ASSERT_EQ(copy->Height(), 7);
    EXPECT_EQ(std::vector(copy->Pixels().Row(6) + 16, copy->Pixels().Row(6) + 20),
        (std::vector<std::uint8_t> { 0x20, 0x60, 0xC0, 255 }));
}

TEST(Intake, ReadsAPictureOnceForBothCopies)
{
    ProgramRun run;
    run.Settings(kSettings[kBoth]);
    run.Plain("a.gif");
    run.Open("a.gif");
    run.Go();
    EXPECT_EQ(run.pictures.Names(), "a.gif a.jpg a.png");
    EXPECT_EQ(run.PlainDecoded(), 1);
}

TEST(Intake, TheSliderCountsAtTheMomentOfTheSave)
{
    ProgramRun run;
    run.Settings(kSettings[kJpg]);
    std::vector<std::uint8_t> noise(64 * 64 * 3);
    for (std::size_t i = 0; i < noise.size(); ++i)
        noise[i] = static_cast<std::uint8_t>(i * i * 31 >> 3);
    run.body.user.push_back([&] {
        const auto window = WVeltrane();
        run.Plain("a.gif", 64, 64);
        window->mTraitFichier(FolderItem::FromPath(run.pictures.Path("a.gif")));
        std::uint8_t* const pixels = window->pImage->Pixels().Writable();
        for (std::size_t i = 0; i < 64 * 64 * 4; ++i)
            pixels[i] = i % 4 == 3 ? 255 : noise[i / 4 * 3 + i % 4];
        std::uintmax_t before = 0;
        for (const int quality : { 0, 40, 100 }) {
            window->SLQualite()->TakeValue(quality);
            window->mSauveImage(true, false);
            const auto size = std::filesystem::file_size(run.pictures.Path("a.jpg"));
            EXPECT_GT(size, before) << quality;
            before = size;
        }
    });
    run.Go();
    EXPECT_EQ(run.body.boxes.size(), 0u);
}

TEST(Intake, AFailedSaveSaysSoKeepsTheOldFileAndTheNextFormatIsTried)
{
    ProgramRun run;
    run.Settings(kSettings[kBoth]);
    run.Plain("a.gif");
    std::filesystem::create_directory(run.pictures.Path("a.png"));
    run.Open("a.gif");
    run.body.user.push_back([] { EXPECT_EQ(WVeltrane()->nbFichiers, 1); });
    run.Go();
    EXPECT_EQ(run.Messages(),
        (std::vector<std::string> { "Erreur de type : impossible d'écrire « a.png » : c'est un dossier" }));
    EXPECT_EQ(run.pictures.Names(), "a.gif a.jpg a.png");
}

TEST(Intake, WithBothAskedAtOnceAFailingJpegEndsTheCall)
{
    ProgramRun run;
    run.Settings(kSettings[kNone]);
    run.Plain("a.gif");
    std::filesystem::create_directory(run.pictures.Path("a.jpg"));
    run.Open("a.gif");
    run.body.user.push_back([] { WVeltrane()->mSauveImage(true, true); });
    run.Go();
    EXPECT_EQ(run.body.boxes.size(), 1u);
    EXPECT_EQ(run.pictures.Names(), "a.gif a.jpg");
}

TEST(Intake, ARefusedFolderIsToldOnceForEachWantedFormat)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "the superuser may write everywhere; the window tests ask as somebody else";
    ProgramRun run;
    run.Settings(kSettings[kBoth]);
    run.Plain("a.gif");
    ASSERT_EQ(chmod(run.pictures.Path().c_str(), 0555), 0);
    run.Open("a.gif");
    run.Go();
    ASSERT_EQ(chmod(run.pictures.Path().c_str(), 0755), 0);
    const std::string refused = "Dossier parent non autorisé en ecriture";
    EXPECT_EQ(run.Messages(), (std::vector<std::string> { refused, refused }));
}

TEST(Intake, NamesAsLongAsTheDiskTakes)
{
    ProgramRun run;
    run.Settings(kSettings[kPng]);
    const std::string longest(251, 'x');
    run.Plain(longest); // 251 + ".png" is the longest name
    run.Plain("y" + longest);
    run.Open(longest);
    run.Open("y" + longest);
    run.Go();
    ASSERT_EQ(run.body.boxes.size(), 1u);
    EXPECT_EQ(run.Messages()[0],
        "Erreur de type : impossible d'écrire « y" + longest + ".png » : le nom est trop long");
    EXPECT_TRUE(std::filesystem::exists(run.pictures.Path(longest + ".png")));
}

TEST(Intake, ALinkToTheSourceIsReplacedAndTheSourceStays)
{
    ProgramRun run;
    run.Settings(kSettings[kPng]);
    run.Plain("photo.gif");
    const std::string source = run.pictures.Read("photo.gif");
    ASSERT_EQ(symlink("photo.gif", run.pictures.Path("photo.png").c_str()), 0);
    run.Open("photo.gif");
    run.Go();
    EXPECT_EQ(run.pictures.Read("photo.gif"), source);
    EXPECT_EQ(FormatOf(run.pictures.Path("photo.png")), "PNG");
}

struct OriginalCase {
    const char* name; ///< the way in which the copy of a.jpg would replace an original, a.png
    void (*prepare)(ProgramRun&);
    const char* message; ///< null: nothing is refused
    bool copied = false; ///< whether a.png is the copy afterwards
};

constexpr const char* kOriginal = "Erreur de type : « a.png » est un fichier d'origine : "
                                  "la copie de « a.jpg » ne le remplace pas";
constexpr const char* kOtherName
    = "Erreur de type : « a.png » est un autre nom du fichier d'origine « b.gif » : "
      "la copie de « a.jpg » ne le remplace pas";

const OriginalCase kOriginals[] = {
    { "LaterInTheSameDrop",
        [](ProgramRun& run) {
            run.Drop({ "a.jpg", "a.png" });
        },
        kOriginal },
    { "EarlierInTheSameDrop",
        [](ProgramRun& run) {
            run.Drop({ "a.png", "a.jpg" });
        },
        kOriginal },
    { "InAnotherDropThatWaits",
        [](ProgramRun& run) {
            run.Drop({ "a.jpg" });
            run.Drop({ "a.png" });
        },
        kOriginal },
    { "AmongTheDocumentsThatWait",
        [](ProgramRun& run) {
            run.Open("a.jpg");
            run.Open("a.png");
        },
        kOriginal },
    { "TakenInLongBefore",
        [](ProgramRun& run) {
            run.Open("a.png");
            run.Open("b.gif");
            run.Open("a.jpg");
        },
        kOriginal },
    { "UnderASecondNameThatWaits",
        [](ProgramRun& run) {
            std::filesystem::remove(run.pictures.Path("b.gif"));
            std::filesystem::create_hard_link(run.pictures.Path("a.png"), run.pictures.Path("b.gif"));
            run.Drop({ "a.jpg", "b.gif" });
        },
        kOtherName },
    { "OverALinkThatWaits",
        [](ProgramRun& run) {
            std::filesystem::remove(run.pictures.Path("b.gif"));
            std::filesystem::create_symlink("a.png", run.pictures.Path("b.gif"));
            run.Drop({ "a.jpg", "b.gif" });
        },
        kOtherName },
    { "AnyOtherFileIsReplaced",
        [](ProgramRun& run) {
            run.Drop({ "a.jpg", "b.gif" });
        },
        nullptr, true },
    { "ItsOwnCopyIsReplacedAgain",
        [](ProgramRun& run) {
            run.Open("a.jpg");
            run.Open("a.jpg");
        },
        nullptr, true },
};

class OriginalFiles : public testing::TestWithParam<OriginalCase> { };

TEST_P(OriginalFiles, AreNeverReplacedByACopy)
{
    const OriginalCase& c = GetParam();
    ProgramRun run;
    run.Settings(kSettings[kPng]);
    run.Plain("a.jpg", 5, 2);
    run.Plain("a.png", 6, 3);
    run.Plain("b.gif", 7, 4);
    const std::string original = run.pictures.Read("a.png");
    c.prepare(run);
    run.Go();
    const auto expected = c.message ? std::vector<std::string> { c.message } : std::vector<std::string> {};
    EXPECT_EQ(run.Messages(), expected);
    EXPECT_EQ(run.pictures.Read("a.png") != original, c.copied);
}

INSTANTIATE_TEST_SUITE_P(Intake, OriginalFiles, testing::ValuesIn(kOriginals), tests::kByName);

TEST(Intake, WhatCannotBeTakenInChangesNothing)
{
    ProgramRun run;
    run.Settings(kSettings[kPng]);
    run.Plain("good.gif");
    run.Plain("wide.gif", 32768, 1);
    run.pictures.Write("bad.gif", "GIF99a");
    run.body.user.push_back([&] {
        const auto window = WVeltrane();
        const auto take = [&](std::string_view name) {
            window->mTraitFichier(FolderItem::FromPath(run.pictures.Path(name)));
        };
        take("good.gif");
        const auto picture = window->pImage;
        take("missing.gif");
        EXPECT_THROW(take("bad.gif"), UnsupportedFormatException);
        EXPECT_THROW(take("wide.gif"), OutOfBoundsException);
        EXPECT_THROW(take(""), IOException) << "a folder";
        EXPECT_THROW(window->mTraitFichier(nullptr), NilObjectException);
        EXPECT_EQ(window->pImage, picture);
        EXPECT_EQ(window->pFich->Name().Bytes(), "good.gif");
        EXPECT_EQ(window->nbFichiers, 1);
        EXPECT_EQ(window->Title().Bytes(), "Veltrane V2 : good.gif");
    });
    run.Go();
    EXPECT_EQ(run.pictures.Names(), "bad.gif good.gif good.png wide.gif");
}
