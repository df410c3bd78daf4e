#include <algorithm>

#include <gtest/gtest.h>

#include "platform/values/Exceptions.h"
#include "platform/widgets/DragItem.h"
#include "shell/App.h"
#include "shell/MainMenuBar.h"
#include "tests/support/Naming.h"
#include "tests/support/ProgramRun.h"
#include "window/WVeltrane.h"

using namespace veltrane;
using tests::ProgramRun;

namespace {

constexpr const char* kNoCopies = "ConversionJPG=ko\nConversionPNG=ko\nTauxJPG=70\n";

std::string Count()
{
    return std::string(WVeltrane()->lbNbFich()->Text().Bytes());
}

struct SettingsCase {
    std::string_view name, before;
    bool jpg, png;
    std::int64_t quality;
    std::string_view after;
};

constexpr SettingsCase kSettings[] = {
    { "FirstRun", "(none)", false, true, 70, "ConversionJPG=ko\nConversionPNG=OK\nTauxJPG=70\n" },
    { "Stored", "ConversionJPG=OK\nConversionPNG=ko\nTauxJPG=35\n", true, false, 35,
        "ConversionJPG=OK\nConversionPNG=ko\nTauxJPG=35\n" },
    { "EmptyFile", "", false, true, 70, "ConversionJPG=ko\nConversionPNG=OK\nTauxJPG=70\n" },
    { "UnknownKeySurvives", "Futur=a=b\nTauxJPG=1", false, true, 1,
        "Futur=a=b\nTauxJPG=1\nConversionJPG=ko\nConversionPNG=OK\n" },
    { "GarbageIsPassedOver", "\xFF\xFE\n\n=empty\nConversionPNG=oui\n", false, false, 70,
        "=empty\nConversionPNG=ko\nConversionJPG=ko\nTauxJPG=70\n" },
    { "LastOfTwoCounts", "TauxJPG=5\r\nTauxJPG=6\r\n", false, true, 6,
        "TauxJPG=6\nConversionJPG=ko\nConversionPNG=OK\n" },
    { "BlanksMakeAnotherKey", "TauxJPG =5\n", false, true, 70,
        "TauxJPG =5\nConversionJPG=ko\nConversionPNG=OK\nTauxJPG=70\n" },
    { "TruncatedNotRounded", "TauxJPG=12.9\n", false, true, 12,
        "TauxJPG=12\nConversionJPG=ko\nConversionPNG=OK\n" },
    { "NoNumberIsZero", "TauxJPG=abc\n", false, true, 0, "TauxJPG=0\nConversionJPG=ko\nConversionPNG=OK\n" },
    { "KeptWithinTheRange", "TauxJPG=1e300\n", false, true, 100,
        "TauxJPG=100\nConversionJPG=ko\nConversionPNG=OK\n" },
};

class Settings : public testing::TestWithParam<SettingsCase> { };

TEST_P(Settings, GoToTheControlsAndBack)
{
    const SettingsCase& c = GetParam();
    ProgramRun run;
    if (c.before != "(none)")
        run.Settings(c.before);
    bool looked = false;
    run.body.user.push_back([&] {
        looked = true;
        EXPECT_EQ(WVeltrane()->CbJPG()->Value(), c.jpg);
        EXPECT_EQ(WVeltrane()->CbPNG()->Value(), c.png);
        EXPECT_EQ(WVeltrane()->SLQualite()->Value(), c.quality);
        const std::string label = "Qualité (" + std::to_string(c.quality) + "%) : ";
        EXPECT_EQ(WVeltrane()->TypeQual()->Text().Bytes(), label);
        EXPECT_EQ(run.Settings(), c.before) << "nothing is stored before the close";
    });
    run.Go();
    EXPECT_TRUE(looked);
    EXPECT_EQ(run.Settings(), c.after);
    EXPECT_EQ(run.body.boxes.size(), 0u);
    EXPECT_EQ(run.runtime.ExitStatus(), 0);
}

INSTANTIATE_TEST_SUITE_P(Run, Settings, testing::ValuesIn(kSettings), tests::kByName);

} // namespace

TEST(Run, LoadsTheSettingsBeforeTheWindowAppearsAndTheFirstDocumentArrives)
{
    ProgramRun run;
    run.Settings(kNoCopies);
    run.Plain("a.tif");
    run.Open("a.tif");
    run.Go();
    const std::vector<std::string> expected { "show", "busy", "title Veltrane V2 : a.tif", "idle", "hide" };
    EXPECT_EQ(run.body.trace, expected);
    EXPECT_EQ(run.pictures.Names(), "a.tif");
    EXPECT_TRUE(run.body.hiDPI);
}

TEST(Run, ChangedControlsAreStoredAtTheClose)
{
    ProgramRun run;
    run.body.user.push_back([] {
        WVeltrane()->CbJPG()->TakeValue(true);
        WVeltrane()->SLQualite()->TakeValue(85);
        EXPECT_EQ(WVeltrane()->TypeQual()->Text().Bytes(), "Qualité (85%) : ");
    });
    run.body.user.push_back([] { WVeltrane()->FileQuit()->Choose(); });
    run.Go();
    EXPECT_EQ(run.Settings(), "ConversionJPG=OK\nConversionPNG=OK\nTauxJPG=85\n");
}

TEST(Run, PreferenceFileThatCannotBeReadOrWrittenIsToldAndTheRunGoesOn)
{
    ProgramRun run;
    std::filesystem::create_directory(run.settings.Path(ProgramRun::kPreferenceFile));
    run.body.user.push_back([] { EXPECT_FALSE(WVeltrane()->CbPNG()->Value()) << "the form's value"; });
    run.Go();
    const std::string name = ProgramRun::kPreferenceFile;
    const std::vector<std::string> expected {
        "Une erreur est survenue : impossible de lire « " + name + " » : c'est un dossier.",
        "Une erreur est survenue : impossible d'écrire « " + name + " » : c'est un dossier.",
    };
    EXPECT_EQ(run.Messages(), expected);
    EXPECT_EQ(run.runtime.ExitStatus(), 0);
}

TEST(Run, DocumentsComeOneByOneAndABadOneLeavesTheOthersAlone)
{
    ProgramRun run;
    run.Settings(kNoCopies);
    run.Plain("a.tif");
    run.pictures.Write("bad.gif", "PLAIN nonsense");
    run.Plain("c.tif");
    for (const char* const name : { "a.tif", "bad.gif", "missing.png", "c.tif" })
        run.Open(name);
    run.body.answer = [](const Box& box) {
        EXPECT_TRUE(box.offersStop) << "other documents wait";
        EXPECT_EQ(WVeltrane()->Title().Bytes(), "Veltrane V2 : a.tif") << "what is shown stays";
        return Box::Answer::Ok;
    };
    run.body.user.push_back([] { EXPECT_EQ(Count(), "2 fichiers traités depuis l'ouverture."); });
    run.Go();
    EXPECT_EQ(run.Messages(),
        (std::vector<std::string> {
            "Le fichier « bad.gif » n'a pas pu être traité : fichier endommagé ou incomplet." }));
}

TEST(Run, StopEndsTheWaitingDocuments)
{
    ProgramRun run;
    run.Settings(kNoCopies);
    run.pictures.Write("bad.gif", "nonsense");
    run.Plain("b.tif");
    run.Open("bad.gif");
    run.Open("b.tif");
    run.body.answer = [](const Box&) { return Box::Answer::Stop; };
    run.body.user.push_back([] { EXPECT_EQ(Count(), "0 fichiers traités depuis l'ouverture."); });
    run.Go();
    EXPECT_EQ(run.body.boxes.size(), 1u);
}

TEST(Run, ADropTakesWhatFitsAndPassesOverTheRest)
{
    ProgramRun run;
    run.Settings(kNoCopies);
    for (const char* const name : { "a.tif", "e.PNG" })
        run.Plain(name);
    run.pictures.Write("notes.txt", "text");
    std::filesystem::create_directory(run.pictures.Path("folder.png"));
    int yields = 0;
    run.body.duringYield = [&] { ++yields; };
    run.body.user.push_back([&] {
        run.Drop({ "a.tif", "notes.txt", "folder.png", "http://example.invalid/x.png", "gone.jpg", "e.PNG" });
        yields = 0;
    });
    run.body.user.push_back([&] {
        EXPECT_EQ(Count(), "2 fichiers traités depuis l'ouverture.");
        EXPECT_EQ(WVeltrane()->Title().Bytes(), "Veltrane V2 : e.PNG");
        EXPECT_EQ(yields, 6) << "one for each item";
    });
    run.Go();
    EXPECT_EQ(run.body.boxes.size(), 0u);
}

TEST(Run, AFailureEndsTheDropAndSaysHowMuchWasLeft)
{
    ProgramRun run;
    run.Settings(kNoCopies);
    run.Plain("a.tif");
    run.pictures.Write("bad.tif", "nonsense");
    run.body.user.push_back([&] { run.Drop({ "a.tif", "bad.tif", "c.tif", "d.tif" }); });
    run.body.user.push_back([] { EXPECT_EQ(Count(), "1 fichiers traités depuis l'ouverture."); });
    run.Go();
    EXPECT_EQ(run.Messages(),
        (std::vector<std::string> { "Le fichier « bad.tif » n'a pas pu être traité : format non reconnu."
                                    "\n\n2 éléments du dépôt n'ont pas été traités." }));
    EXPECT_FALSE(run.body.boxes.at(0).offersStop) << "the drop is over: there is nothing to stop";
}

TEST(Run, ACloseInTheMiddleOfADropFinishesTheFileAndStoresTheSettings)
{
    ProgramRun run;
    run.Settings(kNoCopies);
    for (const char* const name : { "a.tif", "b.tif", "c.tif" })
        run.Plain(name);
    std::string seen;
    run.body.duringYield = [&, inDrop = 0]() mutable {
        const bool open = bool(_GetImplicitWindow("WVeltrane")); // the settings are stored in yields too
        if (open && WVeltrane()->nbFichiers == 2 && ++inDrop == 1) {
            WVeltrane()->SLQualite()->TakeValue(12);
            seen = Count();
            run.Open("c.tif");
            run.runtime.RequestClose(WVeltrane());
            run.runtime.RequestClose(WVeltrane());
            EXPECT_TRUE(_GetImplicitWindow("WVeltrane")) << "a close in a yield is only noted";
        }
    };
    run.body.user.push_back([&] { run.Drop({ "a.tif", "b.tif", "c.tif" }); });
    run.Go();
    EXPECT_EQ(seen, "2 fichiers traités depuis l'ouverture.");
    EXPECT_EQ(run.Settings(), "ConversionJPG=ko\nConversionPNG=ko\nTauxJPG=12\n");
    EXPECT_EQ(run.body.trace.back(), "hide");
    EXPECT_EQ(std::ranges::count(run.body.trace, "title Veltrane V2 : c.tif"), 0);
    EXPECT_EQ(run.body.boxes.size(), 0u);
    EXPECT_EQ(run.runtime.ExitStatus(), 0);
}

TEST(Run, TakesDocumentsFromTheStartUntilACloseIsNoted)
{
    ProgramRun run;
    run.Settings(kNoCopies);
    run.Plain("a.tif");
    run.Open("a.tif");
    EXPECT_TRUE(run.runtime.TakesDocuments()) << "before the start";
    std::string seen;
    run.body.duringYield = [&] { seen += run.runtime.TakesDocuments() ? '+' : '-'; };
    run.body.answer = [&](const Box&) {
        seen += run.runtime.TakesDocuments() ? "box+" : "box-";
        return Box::Answer::Ok;
    };
    run.body.user.push_back([&] { EXPECT_TRUE(run.runtime.TakesDocuments()) << "while nothing is to do"; });
    run.body.user.push_back([&] {
        seen.clear();
        std::filesystem::remove(run.settings.Path(ProgramRun::kPreferenceFile));
        std::filesystem::create_directory(run.settings.Path(ProgramRun::kPreferenceFile));
        run.runtime.RequestQuit();
        EXPECT_FALSE(run.runtime.TakesDocuments()) << "a close waits";
    });
    run.Go();
    EXPECT_EQ(seen, "box-") << "while the settings are stored";
    EXPECT_FALSE(run.runtime.TakesDocuments()) << "after the end";
}

TEST(Run, ASecondDropWaitsForItsTurn)
{
    ProgramRun run;
    run.Settings(kNoCopies);
    for (const char* const name : { "a.tif", "b.tif", "c.tif" })
        run.Plain(name);
    run.body.duringYield = [&, once = false]() mutable {
        if (WVeltrane()->nbFichiers == 1 && !std::exchange(once, true)) {
            run.Drop({ "c.tif" });
            run.runtime.RunNextEvent(); // a body that is too eager
            EXPECT_EQ(WVeltrane()->nbFichiers, 1) << "events come one at a time";
        }
    };
    run.body.user.push_back([&] { run.Drop({ "a.tif", "b.tif" }); });
    run.Go();
    std::vector<std::string> titles;
    std::ranges::copy_if(
        run.body.trace, std::back_inserter(titles), [](const auto& t) { return t.starts_with("title"); });
    EXPECT_EQ(titles,
        (std::vector<std::string> {
            "title Veltrane V2 : a.tif", "title Veltrane V2 : b.tif", "title Veltrane V2 : c.tif" }));
}

TEST(Run, TheSystemsEndOpensNoFurtherBox)
{
    ProgramRun run;
    std::filesystem::create_directory(run.settings.Path(ProgramRun::kPreferenceFile));
    run.body.user.push_back([&] {
        run.body.boxes.clear();
        run.runtime.RequestEnd();
    });
    run.Go();
    EXPECT_EQ(run.body.boxes.size(), 0u) << "the settings cannot be stored, but nobody is there to read it";
    EXPECT_EQ(run.runtime.ExitStatus(), 0);
}

TEST(Run, TheFailureRuleEndsQuietlyWhatAsksForItAndLetsStrangersThrough)
{
    ProgramRun run;
    run.body.user.push_back([&] {
        App()->_CallFunctionWithExceptionHandling([] { throw EndException(); });
        App()->_CallFunctionWithExceptionHandling([] { throw ThreadEndException(); });
        EXPECT_EQ(run.body.boxes.size(), 0u);
        App()->_CallFunctionWithExceptionHandling([] { throw NilObjectException(); });
        EXPECT_THROW(App()->_CallFunctionWithExceptionHandling([] { throw 1; }), int);
    });
    run.Go();
    EXPECT_EQ(run.Messages(),
        (std::vector<std::string> { "Une erreur est survenue : erreur interne (NilObjectException)." }));
}

TEST(Run, ThereIsOneOfEach)
{
    ProgramRun run;
    EXPECT_FALSE(_GetImplicitWindow("WVeltrane"));
    run.body.user.push_back([] {
        EXPECT_EQ(App(), App());
        EXPECT_EQ(WVeltrane(), WVeltrane());
        EXPECT_EQ(WVeltrane()->CV(), WVeltrane()->CV());
        EXPECT_EQ(Ref<MenuBar>(MainMenuBar()), App()->MenuBar());
        EXPECT_EQ(WVeltrane()->MenuBar(), App()->MenuBar());
    });
    run.Go();
    EXPECT_FALSE(_GetImplicitWindow("WVeltrane")) << "gone once it has closed";
}
