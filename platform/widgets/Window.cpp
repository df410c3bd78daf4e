#include "platform/widgets/Window.h"

#include "platform/run/Runtime.h"
#include "platform/widgets/DragItem.h"

namespace veltrane {

Window::~Window() = default;

void Window::Constructor()
{
    RequireMainThread();
    const Ref<Window> self(this);
    Layout();
    CreateControls();
    peer = Runtime::Current().Body().MakeWindowPeer(*this);
    Runtime::Current().Enter(self);
    RaiseOpenEvents();
    if (Runtime::Current().Running())
        Appear();
}

void Window::RaiseOpenEvents()
{
    for (const Ref<Control>& control : controls)
        control->RaiseOpen();
    Runtime::Current().Guard([this] { Event_Open(); });
}

String Window::Title() const
{
    RequireMainThread();
    return title;
}

void Window::Title(const String& fresh)
{
    RequireMainThread();
    title = fresh;
    if (peer)
        peer->ShowTitle();
}

Ref<veltrane::MenuBar> Window::MenuBar() const
{
    RequireMainThread();
    return menuBar;
}

void Window::MenuBar(const Ref<veltrane::MenuBar>& fresh)
{
    RequireMainThread();
    menuBar = fresh;
    if (peer)
        peer->ShowMenuBar();
}

void Window::AcceptFileDrop(const String& types)
{
    RequireMainThread();
    acceptedTypes = types;
    if (peer)
        peer->ShowAcceptedTypes();
}

void Window::_AddControl(const String& name, const Ref<Control>& control)
{
    RequireMainThread();
    control->name = name;
    control->window = this;
    controls.push_back(control);
}

Ref<Control> Window::_ControlByName(const String& name) const
{
    for (const Ref<Control>& control : controls) {
        if (Compare(control->name, name) == 0)
            return control;
    }
    return nullptr;
}

void Window::TakeSize(std::int64_t newWidth, std::int64_t newHeight)
{
    const std::int64_t widthGrowth = newWidth - std::exchange(width, newWidth);
    const std::int64_t heightGrowth = newHeight - std::exchange(height, newHeight);
    for (const Ref<Control>& control : controls) {
        if (const auto rectControl = Cast<RectControl>(control))
            rectControl->Follow(widthGrowth, heightGrowth);
    }
}

void Window::Appear()
{
    if (peer && visible)
        peer->Show();
}

void Window::CloseNow()
{
    if (std::exchange(closed, true))
        return;
    const Ref<Window> self(this);
    Runtime::Current().Guard([this] { Event_Close(); });
    if (peer)
        peer->Hide();
    Runtime::Current().Leave(self);
}

void Window::TakeDrop(const Ref<DragItem>& payload)
{
    const Ref<Window> self(this);
    Event_DropObject(payload, 0);
}

void Window::ShowControl(RectControl& control)
{
    if (peer)
        peer->ShowControl(control);
}

void Window::RefreshControl(RectControl& control, bool now)
{
    if (peer)
        peer->RefreshControl(control, now);
}

bool Window::TakeProperty(const Property& property)
{
    static constexpr PropertySetter<Window> kSetters[] = {
        { "Width", Store<&Window::width> },
        { "Height", Store<&Window::height> },
        { "MinWidth", Store<&Window::minWidth> },
        { "MinHeight", Store<&Window::minHeight> },
        { "MaxWidth", Store<&Window::maxWidth> },
        { "MaxHeight", Store<&Window::maxHeight> },
        { "Frame", Store<&Window::frame> },
        { "Title", Store<&Window::title> },
        { "CloseButton", Store<&Window::closeButton> },
        { "Resizeable", Store<&Window::resizeable> },
        { "MaximizeButton", Store<&Window::maximizeButton> },
        { "MinimizeButton", Store<&Window::minimizeButton> },
        { "FullScreenButton", Store<&Window::fullScreenButton> },
        { "Composite", Store<&Window::composite> },
        { "MacProcID", Store<&Window::macProcID> },
        { "FullScreen", Store<&Window::fullScreen> },
        { "LiveResize", Store<&Window::liveResize> },
        { "Placement", Store<&Window::placement> },
        { "Visible", Store<&Window::visible> },
        { "HasBackColor", Store<&Window::hasBackColor> },
        { "BackColor", Store<&Window::backColor> },
        { "MenuBarVisible", Store<&Window::menuBarVisible> },
    };
    return TakeFrom(kSetters, *this, property);
}

Ref<Window> _GetImplicitWindow(const String& className)
{
    return Runtime::Current().LiveWindow(className);
}

} // namespace veltrane
