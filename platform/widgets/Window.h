#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/run/Toolkit.h"
#include "platform/widgets/Control.h"
#include "platform/widgets/Menu.h"

namespace veltrane {

class DragItem;

/// Base of window classes: a form of controls found by name, shown by the installed body.
class Window : public Counted, public PropertyHolder {
public:
    ~Window() override;

    /// Builds the window: raises Layout and CreateControls, makes its body, enters it in the record of live
    /// windows, then raises the controls' Open events and its own. What Layout or CreateControls raises
    /// leaves here, and the window is not entered.
    virtual void Constructor();

    /// The class's name, as _GetImplicitWindow is asked for it.
    [[nodiscard]] virtual String _ClassName() const = 0;

    /// Text of the title bar; plain text.
    [[nodiscard]] String Title() const;
    void Title(const String& fresh);

    [[nodiscard]] Ref<veltrane::MenuBar> MenuBar() const;
    void MenuBar(const Ref<veltrane::MenuBar>& fresh);

    /// Makes the window take dropped files of these types: names of registered types, each followed or
    /// parted by ";".
    void AcceptFileDrop(const String& types);

    /// Enters a newly made control under its name.
    void _AddControl(const String& name, const Ref<Control>& control);

    /// The control of that name; nil when there is none.
    [[nodiscard]] Ref<Control> _ControlByName(const String& name) const;

    /// Makes an object from inside a window method; the caller then runs its class's Constructor.
    template<class T, class... Args>
    [[nodiscard]] Ref<T> __New(Args&&... args)
    {
        return New<T>(std::forward<Args>(args)...);
    }

    /// @name For bodies and the runtime
    /// @{

    /// The content's size below the menu bar, and its bounds, in widget units.
    [[nodiscard]] std::int64_t Width() const noexcept { return width; }
    [[nodiscard]] std::int64_t Height() const noexcept { return height; }
    [[nodiscard]] std::int64_t MinWidth() const noexcept { return minWidth; }
    [[nodiscard]] std::int64_t MinHeight() const noexcept { return minHeight; }
    [[nodiscard]] std::int64_t MaxWidth() const noexcept { return maxWidth; }
    [[nodiscard]] std::int64_t MaxHeight() const noexcept { return maxHeight; }
    [[nodiscard]] bool Resizeable() const noexcept { return resizeable; }
    [[nodiscard]] bool CloseButton() const noexcept { return closeButton; }
    [[nodiscard]] bool MinimizeButton() const noexcept { return minimizeButton; }
    [[nodiscard]] bool MaximizeButton() const noexcept { return maximizeButton; }
    [[nodiscard]] bool FullScreenButton() const noexcept { return fullScreenButton; }
    [[nodiscard]] bool MenuBarVisible() const noexcept { return menuBarVisible; }

    /// The types given to AcceptFileDrop; empty when nothing is taken.
    [[nodiscard]] const String& AcceptedTypes() const noexcept { return acceptedTypes; }

    /// The controls in the order in which they were entered.
    [[nodiscard]] std::span<const Ref<Control>> Controls() const noexcept { return controls; }

    /// The user or the desktop has given the content this size: moves the controls as their locks say.
    void TakeSize(std::int64_t newWidth, std::int64_t newHeight);

    /// Has the body show the window, if its Visible property says so.
    void Appear();

    /// Raises the Close event and takes the window from the screen and the record.
    void CloseNow();

    /// Raises DropObject.
    void TakeDrop(const Ref<DragItem>& payload);

    void ShowControl(RectControl& control);
    void RefreshControl(RectControl& control, bool now);
    /// @}

protected:
    virtual void Layout() { }
    virtual void CreateControls() { }
    virtual void Event_Open() { }
    virtual void Event_DropObject(const Ref<DragItem>&, std::int64_t) { }
    virtual void Event_Close() { }

    [[nodiscard]] bool TakeProperty(const Property& property) override;

private:
    void RaiseOpenEvents();

    String title, acceptedTypes;
    Ref<veltrane::MenuBar> menuBar;
    std::vector<Ref<Control>> controls;
    std::unique_ptr<WindowPeer> peer;
    bool closed = false;

    std::int64_t width = 300, height = 300, minWidth = 64, minHeight = 64, maxWidth = 32000,
                 maxHeight = 32000;
    std::int64_t frame = 0, macProcID = 0, placement = 0, backColor = 0;
    bool closeButton = true, resizeable = true, maximizeButton = true, minimizeButton = true;
    bool fullScreenButton = false, composite = false, fullScreen = false, liveResize = true, visible = true;
    bool hasBackColor = false, menuBarVisible = true;
};

/// The live window of that class; nil when there is none, also once it has closed.
[[nodiscard]] Ref<Window> _GetImplicitWindow(const String& className);

} // namespace veltrane
