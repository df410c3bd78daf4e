#include "platform/qt/QtWindowPeer.h"

#include "platform/qt/Text.h"
#include "platform/qt/Turns.h"

namespace veltrane::qt {

QtWindowPeer::QtWindowPeer(Window& window, Turns& turns)
    : window(window), turns(turns), frame(window, [&turns] { turns.Painted(); })
{
    ShowTitle();
    ShowAcceptedTypes();
}

void QtWindowPeer::Show()
{
    if (!frame.isVisible()) {
        frame.BeginStepsAtZero();
        frame.Content().RenewUnit();
        frame.TakeSizeOfWindow();
        frame.Content().FocusFirst();
        turns.AwaitPaint();
    }
    frame.show();
    frame.raise();
    frame.activateWindow();
}

void QtWindowPeer::Hide()
{
    frame.hide();
}

void QtWindowPeer::ShowTitle()
{
    frame.setWindowTitle(WithoutPlaceholders(ToLine(window.Title())));
}

void QtWindowPeer::ShowAcceptedTypes()
{
    frame.setAcceptDrops(!window.AcceptedTypes().Empty());
}

} // namespace veltrane::qt
