// The settings, while the system fails under their save.

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/FaultyCalls.h"
#include "tests/support/Naming.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/Snapshot.h"
#include "window/WVeltrane.h"

using namespace veltrane;
using tests::FaultyCalls;
using tests::Link;
using tests::ProgramRun;
using tests::Replaced;
using tests::Scratch;
using tests::Unnamed;

namespace {

constexpr std::string_view kOld = "Autre=1\nConversionJPG=ko\nConversionPNG=OK\nTauxJPG=70\n";
constexpr std::string_view kNew = "Autre=1\nConversionJPG=ko\nConversionPNG=OK\nTauxJPG=11\n";
constexpr const char* kFile = ProgramRun::kPreferenceFile;

struct PlaceCase {
    std::string_view name;
    void (*lay)(const Scratch& folder); ///< where the settings lie before the run
    std::string_view file = kFile; ///< where they lie after it
};

constexpr PlaceCase kPlaces[] = {
    { "AFile", [](const Scratch& f) { f.Write(kFile, kOld); } },
    { "ALink",
        [](const Scratch& f) {
            std::filesystem::create_directory(f.Path("kept"));
            f.Write("kept/veltrane", kOld);
            Link("kept/veltrane", f.Path(kFile));
        },
        "kept/veltrane" },
    { "ALinkThroughALinkedFolder",
        [](const Scratch& f) {
            std::filesystem::create_directory(f.Path("kept"));
            f.Write("kept/veltrane", kOld);
            Link("kept", f.Path("here"));
            Link("../kept/veltrane", f.Path("kept/middle"));
            Link(f.Path("here/middle"), f.Path(kFile));
        },
        "kept/veltrane" },
};

class Places : public testing::TestWithParam<PlaceCase> {
protected:
    // A whole run that moves the slider, with its n-th call failing; whether there was an n-th call.
    bool FailAt(int n, Unnamed unnamed, int error)
    {
        SCOPED_TRACE("call " + std::to_string(n) + " fails with " + std::to_string(error));
        ProgramRun run;
        GetParam().lay(run.settings);
        const auto before = tests::Look(run.settings.Path());
        FaultyCalls calls(unnamed, n, error);
        {
            const Replaced replaced(calls);
            run.body.user.push_back([] { WVeltrane()->SLQualite()->TakeValue(11); });
            run.Go();
        }
        const auto after = calls.MayLeaveAName() ? tests::LookPastLeftOvers(run.settings.Path())
                                                 : tests::Look(run.settings.Path());
        EXPECT_LE(run.Messages().size(), 1u);
        const bool told = !run.Messages().empty();
        EXPECT_TRUE(told || !calls.MustBeTold());
        if (told)
            EXPECT_EQ(after, before);
        else
            EXPECT_EQ(run.settings.Read(GetParam().file), kNew);
        EXPECT_EQ(Paths(after), Paths(before));
        failures += told ? 1 : 0;
        return calls.Met();
    }

    static std::vector<std::string> Paths(const tests::Snapshot& all)
    {
        std::vector<std::string> paths;
        for (const auto& [path, about] : all)
            paths.push_back(path + (about.starts_with("12") ? " -> " + about : "")); // 12….: a link
        return paths;
    }

    int failures = 0;
};

TEST_P(Places, KeepTheOldSettingsOrTakeTheNewOnes)
{
    for (const Unnamed unnamed : { Unnamed::Yes, Unnamed::No }) {
        for (const int error : { ENOSPC, EDQUOT, EIO }) {
            for (int n = 1; FailAt(n, unnamed, error); ++n) { }
        }
    }
    EXPECT_GE(failures, 30) << "the sweep met too few failures to prove anything";
}

INSTANTIATE_TEST_SUITE_P(PreferenceFaults, Places, testing::ValuesIn(kPlaces), tests::kByName);

} // namespace
