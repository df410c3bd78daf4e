#pragma once

#include <cstdint>

#include "platform/values/Ref.h"
#include "platform/values/String.h"
#include "platform/widgets/Event.h"
#include "platform/widgets/Properties.h"
#include "platform/widgets/Rect.h"

namespace veltrane {

class Window;

/// Base of all controls. Made by Window::__New, built by Constructor, entered by Window::_AddControl.
class Control : public Counted, public PropertyHolder {
public:
    /// Builds the control; run once, after the object exists.
    virtual void Constructor() { }

    /// The name under which its window knows it; empty before _AddControl.
    [[nodiscard]] const String& Name() const noexcept { return name; }

    /// Raises the control's Open event; the window does, once all its controls exist.
    virtual void RaiseOpen() { }

private:
    friend class Window;

    String name;

protected:
    Window* window = nullptr; ///< the window that owns this control; nil before _AddControl
};

/// Base of the visible controls: a rectangle in its window.
///
/// The state lives here; a body reads it and shows it. Positions are in widget units from the content's
/// top left corner, for controls inside a group box too.
class RectControl : public Control {
public:
    /// Where the control stands now; the window moves its edges as their locks say.
    [[nodiscard]] const Rect& Bounds() const noexcept { return bounds; }

    [[nodiscard]] bool Enabled() const noexcept { return enabled; }
    [[nodiscard]] bool Visible() const noexcept { return visible; }
    [[nodiscard]] bool TabStop() const noexcept { return tabStop; }

    /// The order of the keyboard's focus among the controls of one parent.
    [[nodiscard]] std::int64_t TabIndex() const noexcept { return tabIndex; }

    /// The tool tip; empty for none.
    [[nodiscard]] const String& HelpTag() const noexcept { return helpTag; }

    /// The name of the control that this one lies in; empty for the window itself.
    [[nodiscard]] const String& InitialParent() const noexcept { return initialParent; }

    /// Asks for the control to be drawn again: before this returns when `now`, else at the next turn of the
    /// event loop.
    virtual void Refresh(bool now);

protected:
    [[nodiscard]] bool TakeProperty(const Property& property) override;
    void PropertyTaken() override { Changed(); }

    /// Has the body show the state as it is now.
    void Changed();

private:
    friend class Window;

    /// Moves the locked edges by what the window's content has grown.
    void Follow(std::int64_t widthGrowth, std::int64_t heightGrowth);

    Rect bounds;
    bool lockLeft = false, lockTop = false, lockRight = false, lockBottom = false;
    bool enabled = true, visible = true, tabStop = true, transparent = false, autoDeactivate = true;
    std::int64_t index = 0, tabIndex = 0, tabPanelIndex = 0;
    String helpTag, initialParent;
};

/// How a control's text is set, for the controls that have one.
struct TextStyle {
    bool bold = false, italic = false, underline = false;
    String font; ///< "System" or empty: the theme's own
    std::int64_t size = 0; ///< in points; 0: the theme's own
    std::int64_t unit = 0; ///< 0: the platform's default

    /// Takes Bold, Italic, TextFont, TextSize, TextUnit and Underline; false for any other name.
    [[nodiscard]] bool Take(const Property& property);
};

} // namespace veltrane
