#pragma once

#include "platform/qt/widgets/MainWindow.h"
#include "platform/run/Toolkit.h"

namespace veltrane::qt {

class Turns;

/// What Qt shows of one window.
class QtWindowPeer final : public WindowPeer {
public:
    QtWindowPeer(Window& window, Turns& turns);

    void Show() override;
    void Hide() override;
    void ShowTitle() override;
    void ShowMenuBar() override { frame.ShowMenuBar(); }
    void ShowAcceptedTypes() override;
    void ShowControl(RectControl& control) override { frame.Content().ShowControl(control); }
    void RefreshControl(RectControl& control, bool now) override
    {
        frame.Content().RefreshControl(control, now);
    }

private:
    Window& window;
    Turns& turns;
    MainWindow frame;
    QString nameOnly; // the title before any document
};

} // namespace veltrane::qt
