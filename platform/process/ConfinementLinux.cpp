#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>

#include <asm/sockios.h>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/ioprio.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/process/Confinement.h"

namespace veltrane {

namespace {

constexpr std::array kNeverNeeded {
    // Other programs and processes.
    SCMP_SYS(execve),
    SCMP_SYS(execveat),
    SCMP_SYS(fork),
    SCMP_SYS(vfork),
    SCMP_SYS(ptrace),
    SCMP_SYS(process_vm_readv),
    SCMP_SYS(process_vm_writev),
    SCMP_SYS(process_madvise),
    SCMP_SYS(process_mrelease),
    SCMP_SYS(pidfd_open),
    SCMP_SYS(pidfd_getfd),
    SCMP_SYS(pidfd_send_signal),
    SCMP_SYS(kcmp),
    SCMP_SYS(get_robust_list),
    SCMP_SYS(migrate_pages),
    SCMP_SYS(move_pages),
    // Another view of the system.
    SCMP_SYS(mount),
    SCMP_SYS(umount2),
    SCMP_SYS(mount_setattr),
    SCMP_SYS(move_mount),
    SCMP_SYS(open_tree),
    SCMP_SYS(fsopen),
    SCMP_SYS(fsconfig),
    SCMP_SYS(fsmount),
    SCMP_SYS(fspick),
    SCMP_SYS(pivot_root),
    SCMP_SYS(chroot),
    SCMP_SYS(setns),
    SCMP_SYS(unshare),
    SCMP_SYS(open_by_handle_at),
    SCMP_SYS(personality),
    // Parts of the kernel that have been a way in, and calls that are made around this filter.
    SCMP_SYS(bpf),
    SCMP_SYS(perf_event_open),
    SCMP_SYS(userfaultfd),
    SCMP_SYS(io_uring_setup),
    SCMP_SYS(io_uring_enter),
    SCMP_SYS(io_uring_register),
    SCMP_SYS(add_key),
    SCMP_SYS(request_key),
    SCMP_SYS(keyctl),
    SCMP_SYS(fanotify_init),
    SCMP_SYS(lookup_dcookie),
    SCMP_SYS(modify_ldt),
    SCMP_SYS(vm86),
    SCMP_SYS(vm86old),
    SCMP_SYS(uselib),
    SCMP_SYS(syslog),
    // The machine as a whole.
    SCMP_SYS(init_module),
    SCMP_SYS(finit_module),
    SCMP_SYS(delete_module),
    SCMP_SYS(kexec_load),
    SCMP_SYS(kexec_file_load),
    SCMP_SYS(reboot),
    SCMP_SYS(swapon),
    SCMP_SYS(swapoff),
    SCMP_SYS(acct),
    SCMP_SYS(quotactl),
    SCMP_SYS(quotactl_fd),
    SCMP_SYS(iopl),
    SCMP_SYS(ioperm),
    SCMP_SYS(sethostname),
    SCMP_SYS(setdomainname),
    SCMP_SYS(settimeofday),
    SCMP_SYS(clock_settime),
    SCMP_SYS(clock_settime64),
    SCMP_SYS(clock_adjtime),
    SCMP_SYS(clock_adjtime64),
    SCMP_SYS(adjtimex),
};

/// The filter in the making. The first failure is kept and ends it.
class Filter {
public:
    Filter() noexcept : context(seccomp_init(SCMP_ACT_ALLOW), seccomp_release), well(context != nullptr) { }

    void Set(scmp_filter_attr attribute, std::uint32_t value) noexcept
    {
        well = well && seccomp_attr_set(context.get(), attribute, value) == 0;
    }

    /// Denies a call when all conditions hold. Calls that this processor does not have pass unnoticed.
    void Deny(int call, std::initializer_list<scmp_arg_cmp> when = {}, int error = EACCES) noexcept
    {
        well = well
            && seccomp_rule_add_array(context.get(), SCMP_ACT_ERRNO(static_cast<std::uint16_t>(error)), call,
                   static_cast<unsigned>(when.size()), when.begin())
                == 0;
    }

    [[nodiscard]] bool Load() noexcept { return well && seccomp_load(context.get()) == 0; }

private:
    std::unique_ptr<void, decltype(&seccomp_release)> context;
    bool well;
};

// The number in an argument's lower half: what is above it the kernel does not look at either.
scmp_arg_cmp LowIs(unsigned argument, std::uint32_t value) noexcept
{
    return { argument, SCMP_CMP_MASKED_EQ, 0xFFFF'FFFF, value };
}

// A thread is made by the call that makes a process, and told apart by a flag. In clone3 the flags lie in
// memory, where a filter cannot look; the C library falls back to clone when there is no such call.
void DenyProcesses(Filter& filter) noexcept
{
    filter.Deny(SCMP_SYS(clone), { { 0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, 0 } });
    filter.Deny(SCMP_SYS(clone3), {}, ENOSYS);
}

// Signals reach this process only. Signal 0 is a question: lock files ask whether their owner lives.
void DenySignals(Filter& filter) noexcept
{
    const auto self = static_cast<scmp_datum_t>(getpid());
    for (const int call : { SCMP_SYS(kill), SCMP_SYS(rt_sigqueueinfo) })
        filter.Deny(call, { { 0, SCMP_CMP_NE, self, 0 }, { 1, SCMP_CMP_NE, 0, 0 } });
    for (const int call : { SCMP_SYS(tgkill), SCMP_SYS(rt_tgsigqueueinfo) })
        filter.Deny(call, { { 0, SCMP_CMP_NE, self, 0 } });
    filter.Deny(SCMP_SYS(tkill)); // names a thread and no process
}

// A descriptor sends a signal of choice to its owner, which may be any process of the user.
void DenyOwners(Filter& filter) noexcept
{
    for (const int call : { SCMP_SYS(fcntl), SCMP_SYS(fcntl64) }) {
        for (const int command : { F_SETOWN, F_SETOWN_EX, F_SETSIG })
            filter.Deny(call, { LowIs(1, static_cast<std::uint32_t>(command)) });
    }
    filter.Deny(SCMP_SYS(ioctl), { LowIs(1, FIOSETOWN) });
    filter.Deny(SCMP_SYS(ioctl), { LowIs(1, SIOCSPGRP) });
}

// Limits, processors and priorities change for the caller only, whose number is 0. A filter cannot know the
// numbers of the threads, so these are refused too; EPERM makes the toolkit start them without a priority.
void DenyControl(Filter& filter) noexcept
{
    for (const int call : { SCMP_SYS(prlimit64), SCMP_SYS(sched_setaffinity), SCMP_SYS(sched_setattr),
             SCMP_SYS(sched_setparam), SCMP_SYS(sched_setscheduler) })
        filter.Deny(call, { { 0, SCMP_CMP_NE, 0, 0 } }, EPERM);
    filter.Deny(SCMP_SYS(setpriority), { { 0, SCMP_CMP_NE, PRIO_PROCESS, 0 } }, EPERM);
    filter.Deny(SCMP_SYS(ioprio_set), { { 0, SCMP_CMP_NE, IOPRIO_WHO_PROCESS, 0 } }, EPERM);
    for (const int call : { SCMP_SYS(setpriority), SCMP_SYS(ioprio_set) })
        filter.Deny(call, { { 1, SCMP_CMP_NE, 0, 0 } }, EPERM);
}

void DenySockets(Filter& filter) noexcept
{
    for (const int call : { SCMP_SYS(socket), SCMP_SYS(socketpair) }) {
        filter.Deny(call, { { 0, SCMP_CMP_GT, AF_UNIX, 0 } });
        filter.Deny(call, { { 0, SCMP_CMP_LT, AF_UNIX, 0 } });
    }
}

// What types into the terminal that the program was started from, for the shell to run afterwards.
void DenyTyping(Filter& filter) noexcept
{
    filter.Deny(SCMP_SYS(ioctl), { LowIs(1, TIOCSTI) });
    filter.Deny(SCMP_SYS(ioctl), { LowIs(1, TIOCLINUX) });
}

// Every processor numbers new calls alike. The list above was made from those of Linux 6.1, this one the
// last.
constexpr std::uint32_t kLastCall = SYS_set_mempolicy_home_node;

// Refuses calls that are newer than the list, as a kernel does that does not have them. libseccomp cannot
// compare numbers, so this is a filter of its own. Where both filters refuse, the one installed later
// decides.
bool RefuseNewCalls() noexcept
{
    std::array<sock_filter, 4> program { {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JGT | BPF_K, kLastCall, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
    } };
    const sock_fprog filter { static_cast<unsigned short>(program.size()), program.data() };
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_TSYNC, &filter) == 0;
}

} // namespace

bool Confine() noexcept
{
    Filter filter;
    filter.Set(SCMP_FLTATR_CTL_OPTIMIZE, 2); // a tree of call numbers: quicker to make than a list
    filter.Set(SCMP_FLTATR_CTL_TSYNC, 1); // the threads that the toolkit has started by now, too
    filter.Set(SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_ERRNO(EACCES)); // the same calls by their 32-bit numbers
    for (const int call : kNeverNeeded)
        filter.Deny(call);
    DenyProcesses(filter);
    DenySignals(filter);
    DenyOwners(filter);
    DenyControl(filter);
    DenySockets(filter);
    DenyTyping(filter);
    return RefuseNewCalls() && filter.Load();
}

} // namespace veltrane
