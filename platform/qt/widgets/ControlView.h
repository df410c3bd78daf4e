#pragma once

#include <QPointF>
#include <QWidget>
#include <memory>

#include "platform/widgets/Control.h"

namespace veltrane::qt {

/// What shows one control: a widget, which its parent widget owns.
class ControlView {
public:
    ControlView(RectControl& control, QWidget& widget) : control(control), widget(widget) { }
    virtual ~ControlView() = default;
    ControlView(const ControlView&) = delete;
    ControlView& operator=(const ControlView&) = delete;

    [[nodiscard]] QWidget& Widget() const noexcept { return widget; }
    [[nodiscard]] RectControl& Shown() const noexcept { return control; }

    /// Shows the control's state. `unit`: logical pixels in one widget unit; `origin`: where the parent
    /// widget begins, in widget units.
    void Show(double unit, QPointF origin);

    /// Draws the widget again, before this returns when `now`.
    virtual void Refresh(bool now);

    /// The document that the window is about; empty for none.
    virtual void ShowDocument(const QString&) { }

    /// The smallest unit, 1 or more, at which the control's box holds its text in the font at hand.
    [[nodiscard]] virtual double NeededUnit() const { return 1; }

protected:
    virtual void ShowContent() = 0;

private:
    RectControl& control;
    QWidget& widget;
};

/// The view of a control, with its widget inside `parent`; null for a class that shows nothing.
[[nodiscard]] std::unique_ptr<ControlView> MakeControlView(QWidget& parent, RectControl& control);

} // namespace veltrane::qt
