#include "platform/qt/widgets/CanvasView.h"

#include <QPaintEvent>
#include <QPainter>
#include <vector>

#include "platform/qt/widgets/Edge.h"

namespace veltrane::qt {

namespace {

// What a screen reader tells of the canvas: who cannot see the preview learns what it shows.
QString Told(const QString& document, QSize picture)
{
    const QString preview = QStringLiteral("Aperçu");
    if (document.isEmpty() || picture.isEmpty())
        return preview;
    return preview + QStringLiteral(" de ") + document + QStringLiteral(", ")
        + QString::number(picture.width()) + QStringLiteral(" × ") + QString::number(picture.height());
}

} // namespace

CanvasWidget::CanvasWidget(QWidget& parent, Canvas& canvas) : PictureWidget(&parent), canvas(canvas)
{
    // Nothing of what lies behind is drawn first, so that nothing flickers.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(canvas.AcceptFocus() ? Qt::StrongFocus : Qt::NoFocus);
    NameForReaders(*this, Told({}, {}));
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
    NameForReaders(*this, Told(document, surface->LastPicture()));
}

CanvasView::CanvasView(QWidget& parent, Canvas& canvas)
    : ControlView(canvas, *new CanvasWidget(parent, canvas))
{
}

void CanvasView::ShowDocument(const QString& name)
{
    static_cast<CanvasWidget&>(Widget()).TakeDocument(name);
}

void CanvasView::Refresh(bool now)
{
    // A hidden canvas is not painted, and would hold a picture that is no longer shown.
    if (!Widget().isVisible())
        static_cast<CanvasWidget&>(Widget()).Forget();
    ControlView::Refresh(now);
}

} // namespace veltrane::qt
