#include <cstdint>

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/process/Confinement.h"

namespace veltrane {

namespace {

/// The attributes of a ruleset up to ABI 6. Debian 12's header knows the first only; an older kernel takes
/// the others where they are 0. Source: landlock_create_ruleset(2).
struct RulesetAttributes {
    std::uint64_t handledFileAccess;
    std::uint64_t handledNetworkAccess; // from ABI 4 on
    std::uint64_t scoped; // from ABI 6 on
};

constexpr std::uint64_t kBindTcp = 1; // LANDLOCK_ACCESS_NET_BIND_TCP
constexpr std::uint64_t kScopeSignal = 2; // LANDLOCK_SCOPE_SIGNAL
constexpr std::uint64_t kRefer = LANDLOCK_ACCESS_FS_REFER;

// A domain keeps its processes from those outside, whatever else it handles, but it has to handle something.
// For each ABI this is what the program does not miss. A domain that handles any access to files also refuses
// to move a file to another folder unless a rule allows it, which ABI 1 cannot; later ones need not handle
// files. The other scope of ABI 6 would refuse the abstract sockets of X11 and of the session bus.
RulesetAttributes Handled(long abi) noexcept
{
    if (abi >= 6)
        return { 0, 0, kScopeSignal };
    if (abi >= 4)
        return { 0, kBindTcp, 0 };
    return { abi >= 2 ? kRefer : LANDLOCK_ACCESS_FS_MAKE_CHAR, 0, 0 };
}

bool AllowMoves(int ruleset) noexcept
{
    const int root = open("/", O_PATH | O_CLOEXEC);
    const landlock_path_beneath_attr everywhere { kRefer, root };
    const bool allowed = root >= 0
        && syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &everywhere, 0) == 0;
    close(root);
    return allowed;
}

} // namespace

bool EnterDomain() noexcept
{
    const RulesetAttributes handled
        = Handled(syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION));
    const int ruleset = static_cast<int>(syscall(SYS_landlock_create_ruleset, &handled, sizeof handled, 0));
    if (ruleset < 0)
        return false;
    const bool entered = (handled.handledFileAccess != kRefer || AllowMoves(ruleset))
        && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
    close(ruleset);
    return entered;
}

} // namespace veltrane
