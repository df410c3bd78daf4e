#include <array>
#include <cerrno>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/process/Confinement.h"
#include "tests/support/Naming.h"

using namespace veltrane;

namespace {

constexpr int kRefused = 255; // the system has no filters, or lets us set none
constexpr int kKilled = 254;

/// What `call` gives, from 0 to 253, in a process of its own.
template<class Call>
int InChild(const Call& call)
{
    const pid_t child = fork();
    if (child == 0)
        _exit([&call]() noexcept { return call(); }()); // no exception may take the child into other tests
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : kKilled;
}

/// The same, confined.
int Confined(int (*call)())
{
    return InChild([call] { return Confine() ? call() : kRefused; });
}

// 0 or the error. The arguments of all rows are such that the call would do no harm, even as root.
template<class... Arguments>
int Error(long number, Arguments... arguments)
{
    return syscall(number, arguments...) < 0 ? errno : 0;
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

struct Row {
    const char* name;
    int (*call)();
};

class Denied : public testing::TestWithParam<Row> { };

TEST_P(Denied, FailsWithAccessDenied)
{
    const int error = Confined(GetParam().call);
    if (error == kRefused)
        GTEST_SKIP() << "no filters here, or nothing to filter";
    EXPECT_EQ(error, EACCES);
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
        Row { "Clone3", [] { return Error(SYS_clone3, nullptr, 0) == ENOSYS ? EACCES : 0; } },
        Row { "Trace", [] { return Error(SYS_ptrace, PTRACE_PEEKDATA, -1, 0, 0); } },
        Row { "ReadMemory", [] { return Error(SYS_process_vm_readv, getpid(), 0, 0, 0, 0, 0); } },
        Row { "WriteMemory", [] { return Error(SYS_process_vm_writev, getpid(), 0, 0, 0, 0, 0); } },
        Row { "TakeDescriptor", [] { return Error(SYS_pidfd_getfd, -1, 0, 0); } },
        Row { "SignalParent", [] { return Error(SYS_kill, getppid(), SIGURG); } },
        Row { "SignalGroup", [] { return Error(SYS_kill, 0, SIGURG); } },
        Row { "SignalThread", [] { return Error(SYS_tgkill, getppid(), getppid(), SIGURG); } },
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
        // Typing into the terminal, also through the upper half of the argument.
        Row { "Typing", [] { return Error(SYS_ioctl, -1, TIOCSTI, nullptr); } },
        Row { "TypingUpperHalf", [] { return Error(SYS_ioctl, -1, 1L << 32 | TIOCSTI, nullptr); } }),
    tests::kByName);

#ifdef __x86_64__
// The same calls under their other numbers.
INSTANTIATE_TEST_SUITE_P(ConfinementByNumber, Denied,
    testing::Values(Row { "X32", [] { return Error(0x4000'0000L | SYS_getpid); } }, Row { "I386", By32Bits }),
    tests::kByName);
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

int WrittenFile()
{
    const int file = open("/tmp", O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (file < 0)
        return errno == EOPNOTSUPP ? 0 : errno;
    return write(file, "a", 1) == 1 && fsync(file) == 0 ? 0 : errno;
}

volatile std::sig_atomic_t heard = 0;

int OwnSignal()
{
    std::signal(SIGUSR1, [](int) { heard = 1; });
    return raise(SIGUSR1) == 0 && kill(getpid(), SIGUSR1) == 0 && heard == 1 ? 0 : 1;
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
        Row { "OwnersLife", [] { return Error(SYS_kill, getppid(), 0); } }, // lock files of the settings
        Row { "TerminalSize", [] { return Error(SYS_ioctl, -1, TIOCGWINSZ, nullptr) == EBADF ? 0 : 1; } }),
    tests::kByName);

} // namespace
