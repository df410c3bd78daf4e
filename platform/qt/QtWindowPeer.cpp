#include "platform/qt/QtWindowPeer.h"

#include "platform/qt/Text.h"
#include "platform/qt/Turns.h"

namespace veltrane::qt {

QtWindowPeer::QtWindowPeer(Window& window, Turns& turns)
    : window(window)
    , turns(turns)
    , frame(window, [&turns] { turns.Painted(); })
    , nameOnly(ToLine(window.Title()))
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
    const QString title = ToLine(window.Title());
    frame.setWindowTitle(WithoutPlaceholders(title));
    const QString before = nameOnly + QStringLiteral(" : ");
    frame.Content().ShowDocument(title.startsWith(before) ? title.sliced(before.size()) : QString());
}

void QtWindowPeer::ShowAcceptedTypes()
{
    frame.setAcceptDrops(!window.AcceptedTypes().Empty());
}

} // namespace veltrane::qt
