#include "platform/qt/QtApplication.h"

#include <QFileOpenEvent>
#include <QIcon>
#include <QSessionManager>

#include "platform/FolderItem.h"
#include "platform/Runtime.h"
#include "platform/UriList.h"
#include "platform/qt/ClearStyle.h"
#include "platform/qt/Edge.h"

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

QIcon WindowIcon()
{
    ProvideIcon();
    QIcon icon;
    for (const int size : { 16, 32, 48 })
        icon.addFile(QStringLiteral(":/icon/%1.png").arg(size), QSize(size, size));
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
