#include "platform/qt/onewindow/Raise.h"

#include <QApplication>
#include <QWidget>

#include "platform/qt/onewindow/X11.h"
#include "platform/qt/widgets/MainWindow.h"

namespace veltrane::qt {

namespace {

// A Wayland compositor wants the token that it gave to whom the user clicked; the toolkit takes it from here.
void LeaveToken(const QByteArray& token)
{
    if (!token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token);
}

} // namespace

void RaiseWindow(const Launch& launch)
{
    EndStartupOnX11(launch.startupId);
    QWidget* const window = VisibleWindow();
    if (window == nullptr)
        return;
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->raise();
    // A box stands before the window and has the keyboard.
    QWidget* const front
        = QApplication::activeModalWidget() != nullptr ? QApplication::activeModalWidget() : window;
    LeaveToken(launch.activationToken);
    const auto time = launch.UserTime();
    if (!time || !ActivateOnX11(*front->windowHandle(), *time))
        front->activateWindow();
}

} // namespace veltrane::qt
