#include "platform/qt/Signals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

#include "platform/qt/widgets/Edge.h"

namespace veltrane::qt {

namespace {

constexpr std::array kSignals { SIGTERM, SIGINT, SIGHUP };

// A signal handler may do little more than write to a pipe; the event loop reads the other end.
int readEnd = -1;
volatile std::sig_atomic_t writeEnd = -1;

void NoteSignal(int)
{
    const int error = errno;
    const char byte = 0;
    // A full pipe already holds the news.
    [[maybe_unused]] const ssize_t written = write(writeEnd, &byte, 1);
    errno = error;
}

void Handle(int signal, void (*handler)(int))
{
    struct sigaction action { };
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

// Started by nohup, the program is to outlive its terminal.
bool IsIgnored(int signal)
{
    struct sigaction present { };
    return sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

} // namespace

Signals::Signals(std::function<void()> onEnd) : onEnd(std::move(onEnd))
{
    std::array<int, 2> ends {};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // without a pipe the signals keep their plain effect
    readEnd = ends[0];
    writeEnd = ends[1];
    notifier = std::make_unique<QSocketNotifier>(readEnd, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { Drain(); });
    for (const int signal : kSignals) {
        if (signal != SIGHUP || !IsIgnored(signal))
            Handle(signal, NoteSignal);
    }
}

Signals::~Signals()
{
    if (!notifier)
        return;
    for (const int signal : kSignals) {
        if (!IsIgnored(signal))
            Handle(signal, SIG_DFL);
    }
    notifier.reset();
    close(readEnd);
    close(writeEnd);
}

void Signals::Drain()
{
    std::array<char, 64> bytes {};
    while (read(readEnd, bytes.data(), bytes.size()) > 0) { }
    AtEdge(onEnd);
}

} // namespace veltrane::qt
