#include "platform/qt/widgets/ScreenGraphics.h"

#include <QTransform>

#include "imaging/pixels/Scaler.h"
#include "platform/pictures/Faults.h"
#include "platform/pictures/Picture.h"

namespace veltrane::qt {

namespace {

double OrOwn(double asked, std::int64_t own)
{
    return asked == Graphics::kOwnSize ? static_cast<double>(own) : asked;
}

// The device pixels that the logical rectangle covers, each edge at the nearest.
QRect DevicePixels(const QTransform& toDevice, const QRectF& logical)
{
    const QRectF exact = toDevice.mapRect(logical);
    const QPoint topLeft(qRound(exact.left()), qRound(exact.top()));
    const QPoint bottomRight(qRound(exact.right()), qRound(exact.bottom()));
    return { topLeft, bottomRight - QPoint(1, 1) };
}

QImage Scaled(const imaging::Bitmap& source, const QRectF& part, QSize size)
{
    const auto format = source.Opaque() ? QImage::Format_RGBX8888 : QImage::Format_RGBA8888_Premultiplied;
    QImage image(size, format);
    if (image.isNull())
        return image;
    imaging::ScaleByArea(source, { part.x(), part.y(), part.width(), part.height() },
        { image.bits(), size.width(), size.height(), static_cast<std::size_t>(image.bytesPerLine()) });
    // The screen's own layout: a repaint then only copies.
    image.convertTo(source.Opaque() ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
    return image;
}

} // namespace

const QImage& ScaledPicture::Of(const imaging::Bitmap& wanted, const QRectF& wantedPart, QSize size)
{
    const bool same
        = !scaled.isNull() && source.SharesPixelsWith(wanted) && part == wantedPart && scaled.size() == size;
    if (!same) {
        scaled = Scaled(wanted, wantedPart, size);
        source = wanted;
        part = wantedPart;
    }
    return scaled;
}

void ScaledPicture::Forget()
{
    source = {};
    scaled = {};
}

void ScreenGraphics::FillRect(double x, double y, double width, double height)
{
    if (painter != nullptr && width > 0 && height > 0)
        painter->fillRect(QRectF(x, y, width, height), QColor::fromRgb(ForeColor()));
}

void ScreenGraphics::DrawPicture(const Ref<Picture>& picture, double x, double y, double destinationWidth,
    double destinationHeight, double sourceX, double sourceY, double sourceWidth, double sourceHeight)
{
    const imaging::Bitmap& pixels = picture->Pixels();
    const std::int64_t ownWidth = picture->Width();
    const std::int64_t ownHeight = picture->Height();
    const QRectF to(x, y, OrOwn(destinationWidth, ownWidth), OrOwn(destinationHeight, ownHeight));
    const QRectF from(sourceX, sourceY, OrOwn(sourceWidth, ownWidth), OrOwn(sourceHeight, ownHeight));
    const bool inside
        = QRectF(0, 0, static_cast<double>(ownWidth), static_cast<double>(ownHeight)).contains(from);
    if (painter == nullptr || to.width() <= 0 || to.height() <= 0 || from.isEmpty() || !inside)
        return;
    WithPixels([&] { Draw(pixels, to, from); }, kNoMemoryToDraw);
    lastPicture = QSize(static_cast<int>(ownWidth), static_cast<int>(ownHeight));
}

void ScreenGraphics::Draw(const imaging::Bitmap& pixels, const QRectF& to, const QRectF& from)
{
    const QTransform toDevice = painter->deviceTransform();
    const QRect device = DevicePixels(toDevice, to);
    if (device.isEmpty())
        return;
    const QImage& image = cache.Of(pixels, from, device.size());
    painter->save();
    // From here on one unit is one real pixel, so that the image is copied and not scaled once more.
    painter->setWorldTransform(
        QTransform::fromTranslate(device.x(), device.y()) * toDevice.inverted() * painter->worldTransform());
    painter->drawImage(QPoint(0, 0), image);
    painter->restore();
}

} // namespace veltrane::qt
