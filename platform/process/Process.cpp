#include "platform/process/Process.h"

#include <csignal>

#include <fcntl.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <unistd.h>

namespace veltrane {

void PrepareProcess() noexcept
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        // The lowest free number is the one that is missing. Open for good, so without O_CLOEXEC.
        if (fcntl(stream, F_GETFD) < 0)
            (void)open("/dev/null", O_RDWR);
    }
    (void)std::signal(SIGXFSZ, SIG_IGN);
    (void)std::signal(SIGPIPE, SIG_IGN);
}

void PrepareAllocator() noexcept
{
#ifdef __GLIBC__
    constexpr int kLargestKept = 32 << 20; // bytes, of one buffer: more is not taken
    (void)mallopt(M_ARENA_MAX, 1);
    (void)mallopt(M_MMAP_THRESHOLD, kLargestKept);
    (void)mallopt(M_TRIM_THRESHOLD, 2 * kLargestKept);
#endif
}

} // namespace veltrane
