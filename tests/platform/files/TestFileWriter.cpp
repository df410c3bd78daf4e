#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/files/FileWriter.h"
#include "platform/values/Exceptions.h"
#include "tests/support/FaultyCalls.h"
#include "tests/support/Scratch.h"

using namespace veltrane;
using tests::FaultyCalls;
using tests::Scratch;
using tests::Unnamed;

namespace {

const std::string kOld = "old content";
const std::string kNew(700'000, 'n'); // more than the writer's buffer

void Save(const std::string& path, FileCalls& calls, std::string_view content)
{
    FileWriter writer(path, calls);
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(content.data());
    writer.Write({ bytes, 10 });
    writer.Write({ bytes + 10, content.size() - 10 });
    writer.Commit();
}

class Faults : public testing::TestWithParam<std::tuple<Unnamed, int>> { };

// Whatever call fails, in whatever way: the old file or the new one, whole, and nothing beside it.
TEST_P(Faults, LeaveTheOldFileOrTheNewOne)
{
    const auto [unnamed, error] = GetParam();
    int failures = 0;
    bool met = true;
    for (int n = 1; met; ++n) {
        const Scratch folder;
        folder.Write("a.png", kOld);
        FaultyCalls calls(unnamed, n, error);
        bool told = false;
        try {
            Save(folder.Path("a.png"), calls, kNew);
        } catch (const IOException& failure) {
            told = true;
            EXPECT_EQ(failure.ErrorNumber(), error);
            EXPECT_TRUE(failure.Message().Bytes().starts_with("impossible d'écrire « a.png » : "));
        }
        EXPECT_EQ(folder.Names(), "a.png") << "call " << n;
        EXPECT_TRUE(told || !calls.MustBeTold()) << "call " << n;
        EXPECT_EQ(folder.Read("a.png") == (told ? kOld : kNew), true) << "call " << n;
        met = calls.Met();
        failures += told ? 1 : 0;
    }
    EXPECT_GE(failures, 8) << "the sweep met too few failures to prove anything";
}

INSTANTIATE_TEST_SUITE_P(FileWriter, Faults,
    testing::Combine(
        testing::Values(Unnamed::Yes, Unnamed::No), testing::Values(ENOSPC, EIO, EDQUOT, EACCES, EINTR)));

// Dies at the n-th call, as a process that is killed does.
class DeadlyCalls final : public FaultyCalls {
public:
    using FaultyCalls::FaultyCalls;

private:
    void Meet() override { raise(SIGKILL); }
};

// Whether a process that saves was killed at its n-th call.
bool KilledAt(int n, Unnamed unnamed, const std::string& path)
{
    const pid_t child = fork();
    if (child == 0) {
        DeadlyCalls calls(unnamed, n, 0);
        Save(path, calls, kNew);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

class Deaths : public testing::TestWithParam<Unnamed> { };

// Killed between any two calls: the old file or the new one, at most one name beside it, gone after a save.
TEST_P(Deaths, LeaveTheOldFileOrTheNewOne)
{
    int n = 0, leftOvers = 0;
    for (bool killed = true; killed;) {
        const Scratch folder;
        folder.Write("a.png", kOld);
        killed = KilledAt(++n, GetParam(), folder.Path("a.png"));
        const std::string content = folder.Read("a.png");
        EXPECT_TRUE(content == kOld || content == kNew) << "call " << n;
        const std::string names = folder.Names();
        EXPECT_TRUE(names == "a.png" || names == ".veltrane-0.tmp a.png") << "call " << n << ": " << names;
        leftOvers += names == "a.png" ? 0 : 1;
        Save(folder.Path("b.png"), FileCalls::System(), kNew);
        EXPECT_EQ(folder.Names(), "a.png b.png") << "call " << n;
    }
    EXPECT_GE(n, 20) << "too few deaths to prove anything";
    EXPECT_GE(leftOvers, 2) << "no name was left for the next save to take away";
}

INSTANTIATE_TEST_SUITE_P(FileWriter, Deaths, testing::Values(Unnamed::Yes, Unnamed::No));

mode_t Mode(const std::string& path)
{
    struct stat found { };
    stat(path.c_str(), &found);
    return found.st_mode & 07777;
}

} // namespace

TEST(FileWriter, WithoutCommitNothingChanges)
{
    const Scratch folder;
    folder.Write("a.png", kOld);
    {
        FileWriter writer(folder.Path("a.png"));
        writer.Write({ reinterpret_cast<const std::uint8_t*>(kNew.data()), kNew.size() });
        EXPECT_EQ(folder.Names(), "a.png") << "an unfinished file has no name";
    }
    EXPECT_EQ(folder.Read("a.png"), kOld);
    EXPECT_EQ(folder.Names(), "a.png");
}

TEST(FileWriter, KeepsThePermissionsOfTheOldFileAndFollowsTheUmaskForANewOne)
{
    const Scratch folder;
    folder.Write("old", kOld);
    chmod(folder.Path("old").c_str(), 0604);
    const mode_t before = umask(027);
    Save(folder.Path("old"), FileCalls::System(), kNew);
    Save(folder.Path("new"), FileCalls::System(), kNew);
    umask(before);
    EXPECT_EQ(Mode(folder.Path("old")), 0604u);
    EXPECT_EQ(Mode(folder.Path("new")), 0640u);
}

TEST(FileWriter, ReplacesALinkAndLeavesItsTargetAlone)
{
    const Scratch folder;
    folder.Write("source.gif", kOld);
    ASSERT_EQ(symlink("source.gif", folder.Path("a.png").c_str()), 0);
    ASSERT_EQ(link(folder.Path("source.gif").c_str(), folder.Path("b.png").c_str()), 0);
    ASSERT_EQ(symlink("nowhere", folder.Path("c.png").c_str()), 0);
    for (const char* const name : { "a.png", "b.png", "c.png" })
        Save(folder.Path(name), FileCalls::System(), kNew);
    EXPECT_EQ(folder.Read("source.gif"), kOld);
    EXPECT_EQ(folder.Names(), "a.png b.png c.png source.gif");
    EXPECT_FALSE(std::filesystem::is_symlink(folder.Path("a.png")));
}

TEST(FileWriter, RefusesWhatIsNoFile)
{
    const Scratch folder;
    std::filesystem::create_directory(folder.Path("dir"));
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    const std::string tooLong(256, 'x');
    for (const std::string& name :
        { std::string("dir"), std::string("pipe"), tooLong, std::string("no/such") })
        EXPECT_THROW(FileWriter(folder.Path(name)), IOException) << name;
    EXPECT_EQ(folder.Names(), "dir pipe");
}

TEST(FileWriter, TakesTheLongestName)
{
    const Scratch folder;
    const std::string longest(255, 'x');
    Save(folder.Path(longest), FileCalls::System(), kNew);
    EXPECT_EQ(folder.Names(), longest);
}

TEST(FileWriter, SweepsWhatAKilledOneLeftAndNothingElse)
{
    const Scratch folder;
    folder.Write(".veltrane-0.tmp", "left by a process that is gone");
    folder.Write(".veltrane-1.tmp", "held by another one");
    const int held = open(folder.Path(".veltrane-1.tmp").c_str(), O_RDONLY);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    ASSERT_EQ(symlink("user.txt", folder.Path(".veltrane-2.tmp").c_str()), 0);
    Save(folder.Path("a.png"), FileCalls::System(), kNew);
    EXPECT_EQ(folder.Names(), ".veltrane-1.tmp .veltrane-2.tmp a.png");
    close(held);
}
