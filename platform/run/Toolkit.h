#pragma once

#include <memory>

#include "platform/values/String.h"

namespace veltrane {

class RectControl;
class Window;

/// What a body shows of one window, its controls and its menus. The body reads the state from the objects
/// (Window, RectControl and its classes, MenuItem) and tells them what the user did through their
/// operations "for bodies". Controls exist, with all their properties, before the peer is made.
class WindowPeer {
public:
    virtual ~WindowPeer() = default;

    virtual void Show() = 0; ///< puts the window on the screen and in front
    virtual void Hide() = 0; ///< takes it from the screen for good
    virtual void ShowTitle() = 0;
    virtual void ShowMenuBar() = 0;
    virtual void ShowAcceptedTypes() = 0;

    /// Some property of the control has changed.
    virtual void ShowControl(RectControl& control) = 0;

    /// Draws the control again: before this returns when `now`.
    virtual void RefreshControl(RectControl& control, bool now) = 0;
};

/// A message box.
struct Box {
    enum class Answer { Ok, Stop };

    String message; ///< plain text
    bool offersStop = false; ///< a second button, « Arrêter »
};

/// What a screen has to provide. One body is handed to the Runtime before anything else runs.
///
/// Whatever a body calls that may run a handler can let out an exception that is no RuntimeException: a
/// fault of the program. The body stops it at the toolkit's edge, ends the loop and has the process exit
/// with a non-zero status (Runtime::Fail).
class Toolkit {
public:
    virtual ~Toolkit() = default;

    /// Called before any window exists.
    virtual void SupportsHiDPI(bool yes) = 0;

    [[nodiscard]] virtual std::unique_ptr<WindowPeer> MakeWindowPeer(Window& window) = 0;

    /// Runs the event loop until EndLoop.
    virtual void Loop() = 0;
    virtual void EndLoop() = 0;

    /// Asks for one call of Runtime::RunNextEvent from the event loop, soon, behind what is there to be
    /// drawn. Also works before Loop.
    virtual void WakeUp() = 0;

    /// Lets what has happened in the meantime take effect: painting, moving, sizing, the controls.
    virtual void Yield() = 0;

    /// Shows a box and returns when the user, or CloseBox, has closed it.
    [[nodiscard]] virtual Box::Answer ShowBox(const Box& box) = 0;

    /// Closes an open box as its first button would; nothing when there is none.
    virtual void CloseBox() = 0;

    /// Shows that files are being taken in.
    virtual void BusyPointer(bool busy) = 0;
};

} // namespace veltrane
