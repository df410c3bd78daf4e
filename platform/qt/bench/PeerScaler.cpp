#include "platform/qt/bench/PeerScaler.h"

#include <QImage>

namespace veltrane::qt {

struct PeerScaler::Source {
    QImage image;
};

PeerScaler::PeerScaler(const imaging::Bitmap& picture) : source(std::make_unique<Source>())
{
    const QImage wrapped(picture.Row(0), picture.Width(), picture.Height(),
        picture.Opaque() ? QImage::Format_RGBX8888 : QImage::Format_RGBA8888);
    source->image = wrapped.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

PeerScaler::~PeerScaler() = default;

int PeerScaler::Scale(int width, int height) const
{
    const QImage scaled
        = source->image.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return scaled.constBits()[0];
}

} // namespace veltrane::qt
