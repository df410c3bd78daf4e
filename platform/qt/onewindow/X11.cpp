#include "platform/qt/onewindow/X11.h"

#include <QGuiApplication>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>

namespace veltrane::qt {

namespace {

constexpr quint32 kFromApplication = 1; // the source of a request, as window managers are told it

struct Free {
    void operator()(void* memory) const noexcept { std::free(memory); }
};

xcb_connection_t* ToolkitsConnection()
{
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

const xcb_screen_t* FirstScreen(xcb_connection_t* connection)
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
}

xcb_atom_t Atom(xcb_connection_t* connection, std::string_view name)
{
    const auto asked = xcb_intern_atom(connection, 0, static_cast<quint16>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> answer(
        xcb_intern_atom_reply(connection, asked, nullptr));
    return answer ? answer->atom : xcb_atom_t(XCB_ATOM_NONE);
}

// An event's size on the wire, whatever its kind.
void SendToRoot(xcb_connection_t* connection, quint32 mask, const xcb_client_message_event_t& event)
{
    xcb_send_event(connection, 0, FirstScreen(connection)->root, mask, reinterpret_cast<const char*>(&event));
}

// A window that nobody sees, which hears of changes to its properties.
xcb_window_t HiddenWindow(xcb_connection_t* connection)
{
    const xcb_window_t window = xcb_generate_id(connection);
    const quint32 wanted = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, 0, window, FirstScreen(connection)->root, -1, -1, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &wanted);
    return window;
}

QByteArray Quoted(const QByteArray& text)
{
    QByteArray quoted = text;
    quoted.replace('\\', "\\\\").replace('"', "\\\"");
    return '"' + quoted + '"';
}

} // namespace

std::optional<quint32> ServerTimeOnX11()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return std::nullopt;
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> own(
        xcb_connect(nullptr, nullptr), &xcb_disconnect);
    if (xcb_connection_has_error(own.get()) != 0)
        return std::nullopt;
    // There is no request for the time, but each change of a property is told with it: nothing is added.
    xcb_change_property(own.get(), XCB_PROP_MODE_APPEND, HiddenWindow(own.get()), XCB_ATOM_WM_NAME,
        XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(own.get());
    while (const auto event = std::unique_ptr<xcb_generic_event_t, Free>(xcb_wait_for_event(own.get()))) {
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY)
            return reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->time;
    }
    return std::nullopt;
}

bool ActivateOnX11(const QWindow& window, quint32 time)
{
    xcb_connection_t* const connection = ToolkitsConnection();
    if (connection == nullptr)
        return false;
    xcb_client_message_event_t event {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = static_cast<xcb_window_t>(window.winId());
    event.type = Atom(connection, "_NET_ACTIVE_WINDOW");
    event.data.data32[0] = kFromApplication;
    event.data.data32[1] = time;
    SendToRoot(connection, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, event);
    xcb_flush(connection);
    return true;
}

void EndStartupOnX11(const QByteArray& startupId)
{
    xcb_connection_t* const connection = ToolkitsConnection();
    if (connection == nullptr || startupId.isEmpty())
        return;
    const QByteArray text = "remove: ID=" + Quoted(startupId) + '\0';
    const xcb_window_t sender = HiddenWindow(connection);
    const xcb_atom_t more = Atom(connection, "_NET_STARTUP_INFO");
    xcb_client_message_event_t event {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 8;
    event.window = sender;
    event.type = Atom(connection, "_NET_STARTUP_INFO_BEGIN");
    for (qsizetype at = 0; at < text.size(); at += qsizetype(sizeof event.data.data8)) {
        std::memset(event.data.data8, 0, sizeof event.data.data8);
        std::memcpy(event.data.data8, text.constData() + at,
            std::min(sizeof event.data.data8, static_cast<std::size_t>(text.size() - at)));
        SendToRoot(connection, XCB_EVENT_MASK_PROPERTY_CHANGE, event);
        event.type = more;
    }
    xcb_destroy_window(connection, sender);
    xcb_flush(connection);
}

} // namespace veltrane::qt
