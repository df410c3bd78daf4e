#include "platform/Process.h"

#include <csignal>

#include <fcntl.h>
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

} // namespace veltrane
