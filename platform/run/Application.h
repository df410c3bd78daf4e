#pragma once

#include <functional>

#include "platform/files/FolderItem.h"
#include "platform/values/Ref.h"
#include "platform/widgets/Menu.h"

namespace veltrane {

class RuntimeException;

/// Base of the application class; one object per run.
class Application : public Counted {
public:
    /// Declares that the application draws for high-density screens; before any window exists.
    static void _SetSupportsHiDPI(bool yes);

    /// Run once, after the object exists.
    virtual void Constructor() { }

    /// Whether the application ends when its last window has closed; false at first.
    [[nodiscard]] bool AutoQuit() const noexcept { return autoQuit; }
    void AutoQuit(bool yes) noexcept { autoQuit = yes; }

    /// The file of the running program, as it was found when the run began; nil when the system does not
    /// tell it.
    [[nodiscard]] Ref<FolderItem> ExecutableFile() const;

    [[nodiscard]] Ref<veltrane::MenuBar> MenuBar() const;
    void MenuBar(const Ref<veltrane::MenuBar>& fresh);

    /// Runs a routine under the application's failure rule: EndException and ThreadEndException end it in
    /// silence, other RuntimeExceptions go to UnhandledException and then to the user; anything else is let
    /// through.
    void _CallFunctionWithExceptionHandling(const std::function<void()>& routine);

    virtual void Event_Open() { }
    virtual void Event_OpenDocument(const Ref<FolderItem>&) { }
    virtual void Event_Close() { }

protected:
    /// Whether the application has dealt with the failure itself.
    [[nodiscard]] virtual bool UnhandledException(const RuntimeException&) { return false; }

private:
    Ref<veltrane::MenuBar> menuBar;
    bool autoQuit = false;
};

} // namespace veltrane
