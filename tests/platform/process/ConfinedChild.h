#pragma once

#include <array>
#include <cerrno>
#include <csignal>

#include <linux/capability.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltrane::tests {

inline constexpr int kRefused = 255; // the system has no filters, or lets us set none
inline constexpr int kKilled = 254;
inline constexpr int kBystanderKilled = 253;

/// What `call` gives, from 0 to 252, in a process of its own.
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

/// Without them root is a user like others: some capabilities open the memory of any process.
inline void DropCapabilities()
{
    __user_cap_header_struct header { _LINUX_CAPABILITY_VERSION_3, 0 };
    const std::array<__user_cap_data_struct, 2> none {};
    (void)syscall(SYS_capset, &header, none.data());
}

inline pid_t bystander = 0;

/// What `call` gives in a confined process, with `bystander` another process of the same user outside. Only a
/// process outside may end that one.
template<class Call>
int BesideBystander(const Call& call)
{
    return InChild([&call] {
        DropCapabilities();
        bystander = fork();
        if (bystander == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL); // if this test is stopped
            for (;;)
                pause();
        }
        const int result = InChild(call);
        const bool alive = waitpid(bystander, nullptr, WNOHANG) == 0;
        if (alive && kill(bystander, SIGKILL) == 0)
            waitpid(bystander, nullptr, 0);
        return alive ? result : kBystanderKilled;
    });
}

/// Makes a call of the system. Returns 0 or its error. The arguments of all rows are such that the call would
/// do no harm, even as root.
template<class... Arguments>
int Error(long number, Arguments... arguments)
{
    return syscall(number, arguments...) < 0 ? errno : 0;
}

/// The ABI of this kernel's Landlock, negative if there is none.
inline long LandlockVersion()
{
    return syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
}

/// A call, and the error that it must end with.
struct Row {
    const char* name;
    int (*call)();
    int error = EACCES;
};

} // namespace veltrane::tests
