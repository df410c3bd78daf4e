#include <cerrno>
#include <csignal>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ptrace.h>

#include "platform/process/Confinement.h"
#include "tests/platform/process/ConfinedChild.h"
#include "tests/support/Naming.h"

using namespace veltrane;
using namespace veltrane::tests;

namespace {

// The error of opening a file of the bystander's.
int OpenOfBystander(const char* name, int mode)
{
    const int file = open(("/proc/" + std::to_string(bystander) + name).c_str(), mode | O_CLOEXEC);
    return file < 0 ? errno : 0;
}

int SignalByDomain()
{
    return LandlockVersion() < 6 ? kRefused : Error(SYS_kill, bystander, SIGTERM);
}

/// What the domain denies by itself, where the filter cannot: files of the system that lead into processes.
class OutOfReach : public testing::TestWithParam<Row> { };

TEST_P(OutOfReach, Fails)
{
    const int error = BesideBystander([] { return EnterDomain() ? GetParam().call() : kRefused; });
    if (error == kRefused)
        GTEST_SKIP() << "no Landlock here, or an older one";
    EXPECT_EQ(error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(Confinement, OutOfReach,
    testing::Values(Row { "Memory", [] { return OpenOfBystander("/mem", O_RDWR); } },
        Row { "Environment", [] { return OpenOfBystander("/environ", O_RDONLY); } },
        Row { "Layout", [] { return OpenOfBystander("/maps", O_RDONLY); } },
        Row { "Descriptors", [] { return OpenOfBystander("/fd/1", O_PATH); } },
        Row { "Folder", [] { return OpenOfBystander("/cwd", O_PATH); } },
        Row { "Trace", [] { return Error(SYS_ptrace, PTRACE_SEIZE, bystander, 0, 0); }, EPERM },
        Row { "Signal", SignalByDomain, EPERM }),
    kByName);

} // namespace
