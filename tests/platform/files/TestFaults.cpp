// The whole program, while the system fails under its saves.

#include <array>
#include <functional>

#include <gtest/gtest.h>
#include <sys/stat.h>
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
using tests::Snapshot;
using tests::Unnamed;

namespace {

constexpr std::string_view kOld = "an older copy";
constexpr std::string_view kPlain = "PLAIN 40 30 2060C0";

struct SceneCase {
    std::string_view name;
    void (*lay)(const Scratch& folder, const std::string& copy); ///< what lies there before the save
    std::string_view opened = "photo.bmp";
    bool refused = false; ///< the copy would take the source's own place
};

void OldCopy(const Scratch& folder, const std::string& copy, mode_t mode)
{
    folder.Write(copy, kOld);
    ASSERT_EQ(chmod(folder.Path(copy).c_str(), mode), 0);
}

constexpr SceneCase kScenes[] = {
    { "NoOldCopy", [](const Scratch&, const std::string&) {} },
    { "OldCopyOfMany", [](const Scratch& f, const std::string& copy) { OldCopy(f, copy, 0666); } },
    { "OldCopyOfOne", [](const Scratch& f, const std::string& copy) { OldCopy(f, copy, 0600); } },
    { "LinkToTheSource", [](const Scratch& f, const std::string& copy) { Link("photo.bmp", f.Path(copy)); } },
    { "ChainToTheSource",
        [](const Scratch& f, const std::string& copy) {
            Link("photo.bmp", f.Path("middle"));
            Link("middle", f.Path(copy));
        } },
    { "LinkToNowhere", [](const Scratch& f, const std::string& copy) { Link("nowhere", f.Path(copy)); } },
    { "LinkThroughALinkedFolder",
        [](const Scratch& f, const std::string& copy) {
            Link(".", f.Path("album"));
            Link("album/photo.bmp", f.Path(copy));
        },
        "album/photo.bmp" },
    { "OtherNameOfTheSource",
        [](const Scratch& f, const std::string& copy) {
            ASSERT_EQ(link(f.Path("photo.bmp").c_str(), f.Path(copy).c_str()), 0);
        } },
    { "SourceLinkedToTheCopy",
        [](const Scratch& f, const std::string& copy) {
            f.Write(copy, kPlain);
            Link(copy, f.Path("photo.gif"));
        },
        "photo.gif", true },
    { "SourceLinkedOverTheCopy",
        [](const Scratch& f, const std::string& copy) {
            Link("photo.bmp", f.Path(copy));
            Link(copy, f.Path("middle"));
            Link("middle", f.Path("photo.gif"));
        },
        "photo.gif", true },
};

class Scenes : public testing::TestWithParam<SceneCase> {
protected:
    // One save with the calls given; what the user was told.
    std::vector<std::string> SaveWith(FaultyCalls& calls, const Scratch& folder)
    {
        const Replaced replaced(calls);
        run.body.boxes.clear();
        WVeltrane()->mTraitFichier(FolderItem::FromPath(folder.Path(GetParam().opened)));
        return run.Messages();
    }

    void Lay(const Scratch& folder) const
    {
        folder.Write("photo.bmp", kPlain);
        ASSERT_EQ(chmod(folder.Path("photo.bmp").c_str(), 0640), 0);
        GetParam().lay(folder, copy);
    }

    // The save with its n-th call failing, then one without a fault; whether there was an n-th call.
    bool FailAt(int n, Unnamed unnamed, int error)
    {
        SCOPED_TRACE("call " + std::to_string(n) + " fails with " + std::to_string(error));
        const Scratch folder;
        Lay(folder);
        const Snapshot before = tests::Look(folder.Path());
        FaultyCalls calls(unnamed, n, error);
        const auto messages = SaveWith(calls, folder);
        Judge(calls, folder, before, messages);
        FaultyCalls sound(unnamed, 0, 0);
        EXPECT_EQ(SaveWith(sound, folder).size(), GetParam().refused ? 1u : 0u) << "the next file";
        JudgeSaved(folder, before);
        failures += messages.empty() ? 0 : 1;
        return calls.Met();
    }

    void Judge(const FaultyCalls& calls, const Scratch& folder, const Snapshot& before,
        const std::vector<std::string>& messages) const
    {
        EXPECT_LE(messages.size(), 1u);
        EXPECT_TRUE(!messages.empty() || !calls.MustBeTold());
        const Snapshot after
            = calls.MayLeaveAName() ? tests::LookPastLeftOvers(folder.Path()) : tests::Look(folder.Path());
        if (messages.empty())
            JudgeSaved(folder, before);
        else
            EXPECT_EQ(after, before);
    }

    // The copy is the new one, whole; all else is as it was.
    void JudgeSaved(const Scratch& folder, Snapshot before) const
    {
        Snapshot after = tests::Look(folder.Path());
        if (!GetParam().refused) {
            EXPECT_EQ(folder.Read(copy), whole);
            struct stat made { };
            ASSERT_EQ(lstat(folder.Path(copy).c_str(), &made), 0);
            EXPECT_TRUE(S_ISREG(made.st_mode));
            before.erase(copy);
            after.erase(copy);
        }
        EXPECT_EQ(after, before);
    }

    void Sweep(bool png)
    {
        copy = png ? "photo.png" : "photo.jpg";
        run.Settings(png ? "ConversionPNG=OK\n" : "ConversionPNG=ko\nConversionJPG=OK\n");
        run.body.user.push_back([&] {
            const Scratch folder;
            folder.Write("photo.bmp", kPlain);
            WVeltrane()->mTraitFichier(FolderItem::FromPath(folder.Path("photo.bmp")));
            whole = folder.Read(copy);
            for (const Unnamed unnamed : { Unnamed::Yes, Unnamed::No }) {
                for (const int error : { ENOSPC, EDQUOT, EIO }) {
                    for (int n = 1; FailAt(n, unnamed, error); ++n) { }
                }
            }
        });
        run.Go();
        EXPECT_GE(failures, GetParam().refused ? 12 : 30)
            << "the sweep met too few failures to prove anything";
    }

    ProgramRun run;
    std::string copy, whole;
    int failures = 0;
};

TEST_P(Scenes, SurviveFailingPngSaves)
{
    Sweep(true);
}

TEST_P(Scenes, SurviveFailingJpegSaves)
{
    Sweep(false);
}

INSTANTIATE_TEST_SUITE_P(Faults, Scenes, testing::ValuesIn(kScenes), tests::kByName);

} // namespace
