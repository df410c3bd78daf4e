#include "platform/qt/MoreIcon.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPolygonF>
#include <algorithm>

namespace veltrane::qt {

namespace {

class Angles final : public QIconEngine {
public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const double side = std::min(rect.width(), rect.height()), half = side / 4;
        const QPointF middle = QRectF(rect).center();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(Colour(mode), std::max(1.0, side / 10)));
        for (const double tip : { 0.0, half * 1.5 })
            painter->drawPolyline(QPolygonF({ middle + QPointF(tip - half, -half), middle + QPointF(tip, 0),
                middle + QPointF(tip - half, half) }));
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, drawn.rect(), mode, state);
        return drawn;
    }
    [[nodiscard]] QIconEngine* clone() const override { return new Angles; }

private:
    static QColor Colour(QIcon::Mode mode)
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        return QGuiApplication::palette().color(group, QPalette::ButtonText);
    }
};

} // namespace

QIcon MoreIcon()
{
    return QIcon(new Angles);
}

} // namespace veltrane::qt
