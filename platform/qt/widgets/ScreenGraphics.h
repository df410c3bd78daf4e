#pragma once

#include <QImage>
#include <QPainter>
#include <QRectF>

#include "imaging/pixels/Bitmap.h"
#include "platform/pictures/Graphics.h"

namespace veltrane::qt {

/// The picture last scaled for a canvas. Exposes and hovering windows ask for the same one again and again.
class ScaledPicture {
public:
    /// The source rectangle scaled to `size` device pixels, ready to be blitted. Holds on to the pixels of
    /// `source`, which tells whether they are still the same.
    [[nodiscard]] const QImage& Of(const imaging::Bitmap& source, const QRectF& part, QSize size);

    void Forget();

private:
    imaging::Bitmap source;
    QRectF part;
    QImage scaled;
};

/// The surface of a widget while it is painted. Units are the widget's logical pixels; pictures are scaled
/// to the screen's real ones.
class ScreenGraphics final : public Graphics {
public:
    ScreenGraphics(QPainter& painter, QSize size, ScaledPicture& cache) noexcept
        : painter(&painter), size(size), cache(cache)
    {
    }

    /// The paint is over; drawing has no effect from now on.
    void End() noexcept { painter = nullptr; }

    /// The whole size of the picture that was drawn last, in its own pixels; empty when none was.
    [[nodiscard]] QSize LastPicture() const noexcept { return lastPicture; }

    [[nodiscard]] std::int64_t Width() const override { return size.width(); }
    [[nodiscard]] std::int64_t Height() const override { return size.height(); }
    void FillRect(double x, double y, double width, double height) override;
    void DrawPicture(const Ref<Picture>& picture, double x, double y, double destinationWidth,
        double destinationHeight, double sourceX, double sourceY, double sourceWidth,
        double sourceHeight) override;

private:
    void Draw(const imaging::Bitmap& pixels, const QRectF& to, const QRectF& from);

    QPainter* painter;
    QSize size, lastPicture;
    ScaledPicture& cache;
};

} // namespace veltrane::qt
