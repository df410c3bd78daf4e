#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace veltrane::qt {

/// Has a routine called, from the event loop, when the system asks the process to end: SIGTERM, SIGINT,
/// SIGHUP. One object at a time.
class Signals {
public:
    explicit Signals(std::function<void()> onEnd);
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

private:
    void Drain();

    std::function<void()> onEnd;
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace veltrane::qt
