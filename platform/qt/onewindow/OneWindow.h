#pragma once

#include <memory>
#include <vector>

#include "platform/files/FolderItem.h"

namespace veltrane {

/// This start of the program among the others of its user on the same screen. The first one shows the window;
/// a later one hands it its documents over the session bus and ends. Where there is no session bus, each
/// start is a first one.
///
/// One per process, made before the toolkit. Serves org.freedesktop.Application, so that file managers can
/// hand over documents too.
/// Source: Desktop Entry Specification 1.5, "D-Bus Activation"; D-Bus Specification 0.41, "Message Bus
/// Names".
class OneWindow {
public:
    OneWindow();
    ~OneWindow();
    OneWindow(const OneWindow&) = delete;
    OneWindow& operator=(const OneWindow&) = delete;

    /// True when an earlier start has taken the documents and come to the front: this one may end. False when
    /// this one is to show a window of its own; what later starts hand over then waits for the event loop.
    [[nodiscard]] bool HandOver(const std::vector<Ref<FolderItem>>& documents);

    /// The run has ended and its settings are stored: later starts are told to go on by themselves. Nothing
    /// when called again.
    void Leave();

private:
    struct Bus;
    std::unique_ptr<Bus> bus; // null without a session bus, and once left
};

} // namespace veltrane
