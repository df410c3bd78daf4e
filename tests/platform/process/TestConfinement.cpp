#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/files/FileWriter.h"
#include "platform/process/Confinement.h"
#include "tests/platform/process/ConfinedChild.h"
#include "tests/support/Naming.h"
#include "tests/support/Scratch.h"

using namespace veltrane;
using namespace veltrane::tests;

namespace {

/// The same, with all that the program gives up.
int Confined(int (*call)())
{
    return BesideBystander([call] {
        (void)EnterDomain();
        return Confine() ? call() : kRefused;
    });
}

#ifdef __x86_64__
// getpid by its 32-bit number. 0 or the error, which that entry gives as the result. A system that was built
// without the entry ends whoever tries it.
int By32Bits()
{
    (void)std::signal(SIGSEGV, [](int) { _exit(kRefused); });
    int result = 20;
    asm volatile("int $0x80" : "+a"(result) : : "memory");
    return result < 0 ? -result : 0;
}
#endif

int Fork()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    return child < 0 ? errno : 0;
}

// What a thread may do that is older than the filter, as the toolkit's are.
int InAnEarlierThread()
{
    std::array<int, 2> go {};
    if (pipe(go.data()) != 0)
        return errno;
    int error = kRefused;
    std::thread early([&] {
        char byte = 0;
        if (read(go[0], &byte, 1) == 1)
            error = Error(SYS_execve, "/nonexistent", nullptr, nullptr);
    });
    const bool confined = Confine();
    if (write(go[1], "", 1) != 1)
        error = kRefused;
    early.join();
    return confined ? error : kRefused;
}

// What reaches the bystander without any call but reads and writes of the pipe, once the owner is set.
int SignalOnInput()
{
    std::array<int, 2> ends {};
    const f_owner_ex owner { F_OWNER_PID, bystander };
    if (pipe(ends.data()) != 0)
        return kKilled;
    if (fcntl(ends[0], F_SETOWN_EX, &owner) != 0)
        return errno;
    (void)(fcntl(ends[0], F_SETSIG, SIGKILL) + fcntl(ends[0], F_SETFL, O_ASYNC));
    return write(ends[1], "", 1) == 1 ? 0 : errno;
}

class Denied : public testing::TestWithParam<Row> { };

TEST_P(Denied, Fails)
{
    const int error = Confined(GetParam().call);
    if (error == kRefused)
        GTEST_SKIP() << "no filters here, or nothing to filter";
    EXPECT_EQ(error, GetParam().error);
}

TEST(Confinement, ReachesEarlierThreads)
{
    const int error = InChild(InAnEarlierThread);
    if (error == kRefused)
        GTEST_SKIP() << "no filters here";
    EXPECT_EQ(error, EACCES);
}

INSTANTIATE_TEST_SUITE_P(Confinement, Denied,
    testing::Values(
        // Other programs and processes, by each way that leads there.
        Row { "Exec", [] { return Error(SYS_execve, "/nonexistent", nullptr, nullptr); } },
        Row { "ExecAt", [] { return Error(SYS_execveat, -1, "", nullptr, nullptr, AT_EMPTY_PATH); } },
        Row { "Fork", Fork },
        Row { "Clone", [] { return Error(SYS_clone, SIGCHLD | CLONE_SIGHAND, 0, 0, 0, 0); } },
        Row { "Clone3", [] { return Error(SYS_clone3, nullptr, 0); }, ENOSYS },
        Row { "Trace", [] { return Error(SYS_ptrace, PTRACE_PEEKDATA, -1, 0, 0); } },
        Row { "ReadMemory", [] { return Error(SYS_process_vm_readv, getpid(), 0, 0, 0, 0, 0); } },
        Row { "WriteMemory", [] { return Error(SYS_process_vm_writev, getpid(), 0, 0, 0, 0, 0); } },
        Row { "TakeDescriptor", [] { return Error(SYS_pidfd_getfd, -1, 0, 0); } },
        Row { "SignalParent", [] { return Error(SYS_kill, getppid(), SIGURG); } },
        Row { "SignalGroup", [] { return Error(SYS_kill, 0, SIGURG); } },
        Row { "SignalThread", [] { return Error(SYS_tgkill, getppid(), getppid(), SIGURG); } },
        Row { "SignalOnInput", SignalOnInput },
        Row { "SetOwner", [] { return Error(SYS_fcntl, 0, F_SETOWN, bystander); } },
        Row { "SetOwnerUpperHalf", [] { return Error(SYS_fcntl, 0, 1L << 32 | F_SETOWN, bystander); } },
        Row { "SetSignal", [] { return Error(SYS_fcntl, 0, F_SETSIG, SIGKILL); } },
        Row { "SocketOwner", [] { return Error(SYS_ioctl, -1, FIOSETOWN, &bystander); } },
        Row { "SocketGroup", [] { return Error(SYS_ioctl, -1, SIOCSPGRP, &bystander); } },
        Row { "Handle", [] { return Error(SYS_pidfd_open, bystander, 0); } },
        Row { "ReleaseMemory", [] { return Error(SYS_process_mrelease, -1, 0); } },
        Row { "MovePages", [] { return Error(SYS_move_pages, bystander, 0, nullptr, nullptr, nullptr, 0); } },
        Row { "MigratePages", [] { return Error(SYS_migrate_pages, bystander, 0, nullptr, nullptr); } },
        Row { "Locks", [] { return Error(SYS_get_robust_list, bystander, nullptr, nullptr); } },
        // Limits, processors and priorities of others. Nobody has the last number.
        Row {
            "Limits", [] { return Error(SYS_prlimit64, bystander, RLIMIT_CORE, nullptr, nullptr); }, EPERM },
        Row { "Processors", [] { return Error(SYS_sched_setaffinity, bystander, 0, nullptr); }, EPERM },
        Row { "Scheduler", [] { return Error(SYS_sched_setscheduler, bystander, -1, nullptr); }, EPERM },
        Row { "SchedulerParameters", [] { return Error(SYS_sched_setparam, bystander, nullptr); }, EPERM },
        Row { "SchedulerAttributes", [] { return Error(SYS_sched_setattr, bystander, nullptr, 0); }, EPERM },
        Row { "Priority", [] { return Error(SYS_setpriority, PRIO_PROCESS, bystander, 0); }, EPERM },
        Row { "PriorityOfUser", [] { return Error(SYS_setpriority, PRIO_USER, 0x7FFF'FFFF, 0); }, EPERM },
        Row { "DiskPriority", [] { return Error(SYS_ioprio_set, 1, bystander, 0); }, EPERM },
        Row { "DiskPriorityOfUser", [] { return Error(SYS_ioprio_set, 3, 0x7FFF'FFFF, 0); }, EPERM },
        // Sockets that leave the machine or reach the kernel, also through the upper half of the argument.
        Row { "Internet", [] { return Error(SYS_socket, AF_INET, SOCK_STREAM, 0); } },
        Row { "Internet6", [] { return Error(SYS_socket, AF_INET6, SOCK_DGRAM, 0); } },
        Row { "Netlink", [] { return Error(SYS_socket, AF_NETLINK, SOCK_RAW, 0); } },
        Row { "UnspecifiedPair", [] { return Error(SYS_socketpair, AF_UNSPEC, SOCK_STREAM, 0, nullptr); } },
        Row { "UpperHalf", [] { return Error(SYS_socket, 1L << 32 | AF_INET, SOCK_STREAM, 0); } },
        // Another view of the system.
        Row { "Mount", [] { return Error(SYS_mount, nullptr, nullptr, nullptr, 0, nullptr); } },
        Row { "NewMount", [] { return Error(SYS_fsopen, nullptr, 0); } },
        Row { "Unmount", [] { return Error(SYS_umount2, "/nonexistent", 0); } },
        Row { "Root", [] { return Error(SYS_chroot, "/nonexistent"); } },
        Row { "PivotRoot", [] { return Error(SYS_pivot_root, "/nonexistent", "/nonexistent"); } },
        Row { "Unshare", [] { return Error(SYS_unshare, 0); } },
        Row { "EnterSpace", [] { return Error(SYS_setns, -1, 0); } },
        Row { "ByHandle", [] { return Error(SYS_open_by_handle_at, -1, nullptr, 0); } },
        Row { "Personality", [] { return Error(SYS_personality, 0xFFFF'FFFF); } },
        // The kernel's own doors.
        Row { "Bpf", [] { return Error(SYS_bpf, -1, nullptr, 0); } },
        Row { "Performance", [] { return Error(SYS_perf_event_open, nullptr, 0, 0, 0, 0); } },
        Row { "PageFaults", [] { return Error(SYS_userfaultfd, -1); } },
        Row { "Ring", [] { return Error(SYS_io_uring_setup, 0, nullptr); } },
        Row { "Keys", [] { return Error(SYS_keyctl, -1, 0, 0, 0, 0); } },
        Row { "Module", [] { return Error(SYS_init_module, nullptr, 0, nullptr); } },
        Row { "ModuleFile", [] { return Error(SYS_finit_module, -1, nullptr, 0); } },
        Row { "Kernel", [] { return Error(SYS_kexec_load, 0, 1, nullptr, ~0L); } },
        Row { "Reboot", [] { return Error(SYS_reboot, 0, 0, 0, nullptr); } },
        Row { "Swap", [] { return Error(SYS_swapon, "/nonexistent", 0); } },
        Row { "Clock", [] { return Error(SYS_clock_adjtime, -1, nullptr); } },
        Row { "ClockAdjustment", [] { return Error(SYS_adjtimex, nullptr); } },
        // The first call that is newer than the filter: cachestat.
        Row { "NewCall", [] { return Error(SYS_set_mempolicy_home_node + 1, -1, nullptr, nullptr, 0); },
            ENOSYS },
        // Typing into the terminal, also through the upper half of the argument.
        Row { "Typing", [] { return Error(SYS_ioctl, -1, TIOCSTI, nullptr); } },
        Row { "TypingUpperHalf", [] { return Error(SYS_ioctl, -1, 1L << 32 | TIOCSTI, nullptr); } }),
    kByName);

#ifdef __x86_64__
// The same calls under their other numbers.
INSTANTIATE_TEST_SUITE_P(ConfinementByNumber, Denied,
    testing::Values(Row { "X32", [] { return Error(0x4000'0000L | SYS_getpid); } }, Row { "I386", By32Bits }),
    kByName);
#endif

int LocalSocket()
{
    std::array<int, 2> ends {};
    if (const int error = Error(SYS_socketpair, AF_UNIX, SOCK_STREAM, 0, ends.data()); error != 0)
        return error;
    const int own = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return own < 0 ? errno : 0;
}

int NewThread()
{
    int seen = 1;
    std::thread([&seen] { seen = 0; }).join();
    return seen;
}

// A new file, its replacement, and a move that the domain must allow: ABI 1 cannot.
int WrittenFile()
{
    const Scratch scratch;
    for (int turn = 0; turn < 2; ++turn)
        FileWriter(scratch.Path("a")).Commit();
    std::filesystem::create_directory(scratch.Path("b"));
    std::error_code error;
    std::filesystem::rename(scratch.Path("a"), scratch.Path("b/a"), error);
    return LandlockVersion() == 1 ? 0 : error.value();
}

volatile std::sig_atomic_t heard = 0;

int OwnSignal()
{
    std::signal(SIGUSR1, [](int) { heard = 1; });
    return raise(SIGUSR1) == 0 && kill(getpid(), SIGUSR1) == 0 && heard == 1 ? 0 : 1;
}

// Lock files of the settings ask whether their owner lives. The domain hides who is alive, not who is dead.
int OwnersLife()
{
    const int alive = Error(SYS_kill, bystander, 0);
    return (alive == 0 || alive == EPERM) && Error(SYS_kill, 0x7FFF'FFFF, 0) == ESRCH ? 0 : 1;
}

int OwnLimits()
{
    rlimit limit {};
    return getrlimit(RLIMIT_CORE, &limit) + setrlimit(RLIMIT_CORE, &limit)
        + setpriority(PRIO_PROCESS, 0, getpriority(PRIO_PROCESS, 0));
}

class Needed : public testing::TestWithParam<Row> { };

TEST_P(Needed, GoesOnWorking)
{
    const int error = Confined(GetParam().call);
    if (error == kRefused)
        GTEST_SKIP() << "no filters here";
    EXPECT_EQ(error, 0);
}

INSTANTIATE_TEST_SUITE_P(Confinement, Needed,
    testing::Values(Row { "LocalSocket", LocalSocket }, // display, session bus, accessibility started later
        Row { "NewThread", NewThread }, // clone3 must fall back to clone
        Row { "WrittenFile", WrittenFile }, Row { "OwnSignal", OwnSignal }, // abort and the logout's handler
        Row { "OwnersLife", OwnersLife }, Row { "OwnLimits", OwnLimits },
        Row { "TerminalSize", [] { return Error(SYS_ioctl, -1, TIOCGWINSZ, nullptr) == EBADF ? 0 : 1; } }),
    kByName);

} // namespace
