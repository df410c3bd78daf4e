#pragma once

#include "platform/qt/widgets/Accessibility.h"
#include "platform/qt/widgets/ControlView.h"
#include "platform/qt/widgets/ScreenGraphics.h"
#include "platform/widgets/Canvas.h"

namespace veltrane::qt {

/// The widget of a Canvas: all that it shows comes from the Paint event.
class CanvasWidget final : public PictureWidget {
public:
    CanvasWidget(QWidget& parent, Canvas& canvas);

    /// Lets go of the picture that was drawn last.
    void Forget() { scaled.Forget(); }

    /// The name that goes with the next picture to be drawn.
    void TakeDocument(const QString& name) { document = name; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Canvas& canvas;
    ScaledPicture scaled;
    QString document;
};

class CanvasView final : public ControlView {
public:
    CanvasView(QWidget& parent, Canvas& canvas);
    void Refresh(bool now) override;
    void ShowDocument(const QString& name) override;

private:
    void ShowContent() override { }
};

} // namespace veltrane::qt
