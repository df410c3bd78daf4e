#include "platform/qt/QtApplication.h"

#include <QFile>
#include <QFileOpenEvent>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QSessionManager>

#include "imaging/pixels/Bitmap.h"
#include "imaging/png/Png.h"
#include "platform/files/FolderItem.h"
#include "platform/files/UriList.h"
#include "platform/pictures/Faults.h"
#include "platform/qt/widgets/ClearStyle.h"
#include "platform/qt/widgets/Edge.h"
#include "platform/run/Runtime.h"

// A library's own resources wait to be asked for; the macro wants to stand outside of name spaces.
static void ProvideIcon()
{
    Q_INIT_RESOURCE(icon);
}

namespace veltrane::qt {

namespace {

void OpenDocument(const QUrl& address)
{
    if (const auto path = LocalPath(address.toEncoded().toStdString()))
        Runtime::Current().OpenDocument(FolderItem::FromPath(*path));
}

// By our own decoder: the toolkit's reader would load the plug-in of every format first.
QPixmap OwnPicture(const QString& name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    const imaging::Bytes png(
        reinterpret_cast<const std::uint8_t*>(bytes.constData()), static_cast<std::size_t>(bytes.size()));
    return WithPixels([png] {
        const imaging::Bitmap picture = imaging::kPng.decode(png, {});
        const QImage image(picture.Row(0), picture.Width(), picture.Height(),
            static_cast<qsizetype>(picture.Stride()), QImage::Format_RGBA8888);
        return QPixmap::fromImage(image);
    });
}

QIcon WindowIcon()
{
    ProvideIcon();
    QIcon icon;
    for (const int size : { 16, 32, 48 })
        icon.addPixmap(OwnPicture(QStringLiteral(":/icon/%1.png").arg(size)));
    return icon;
}

} // namespace

QtApplication::QtApplication(int& count, char** arguments) : QApplication(count, arguments)
{
    setApplicationName(QStringLiteral("Veltrane"));
    setDesktopFileName(QStringLiteral("org.veltrane.veltrane"));
    setWindowIcon(WindowIcon());
    ClearStyle::Install();
    setQuitOnLastWindowClosed(false);
    // The session waits for the answer to this signal, not for the end of the program: the close has its
    // turn right behind it.
    QObject::connect(this, &QGuiApplication::commitDataRequest, this,
        [](QSessionManager&) { AtEdge([] { Runtime::Current().RequestEnd(); }); });
}

bool QtApplication::event(QEvent* event)
{
    if (event->type() != QEvent::FileOpen)
        return QApplication::event(event);
    AtEdge([&] { OpenDocument(static_cast<QFileOpenEvent*>(event)->url()); });
    return true;
}

} // namespace veltrane::qt
