#include "platform/qt/CanvasView.h"

#include <QPaintEvent>
#include <QPainter>
#include <vector>

#include "platform/qt/Edge.h"

namespace veltrane::qt {

CanvasWidget::CanvasWidget(QWidget& parent, Canvas& canvas) : PictureWidget(&parent), canvas(canvas)
{
    // Nothing of what lies behind is drawn first, so that nothing flickers.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(canvas.AcceptFocus() ? Qt::StrongFocus : Qt::NoFocus);
    NameForReaders(*this, QStringLiteral("Aperçu"));
}

void CanvasWidget::paintEvent(QPaintEvent* event)
{
    std::vector<Rect> areas;
    for (const QRect& area : event->region())
        areas.push_back({ area.x(), area.y(), area.width(), area.height() });
    QPainter painter(this);
    const auto surface = New<ScreenGraphics>(painter, size(), scaled);
    AtEdge([&] { canvas.PaintOn(surface, areas); });
    surface->End();
}

CanvasView::CanvasView(QWidget& parent, Canvas& canvas)
    : ControlView(canvas, *new CanvasWidget(parent, canvas))
{
}

void CanvasView::Refresh(bool now)
{
    // A hidden canvas is not painted, and would hold a picture that is no longer shown.
    if (!Widget().isVisible())
        static_cast<CanvasWidget&>(Widget()).Forget();
    ControlView::Refresh(now);
}

} // namespace veltrane::qt
