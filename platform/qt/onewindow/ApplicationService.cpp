#include "platform/qt/onewindow/ApplicationService.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>

#include "platform/files/FolderItem.h"
#include "platform/files/UriList.h"
#include "platform/qt/onewindow/Launch.h"
#include "platform/qt/onewindow/Raise.h"
#include "platform/qt/widgets/Edge.h"
#include "platform/run/Runtime.h"
#include "platform/values/Exceptions.h"

namespace veltrane::qt {

namespace {

constexpr int kPatience = 10'000; // ms; the program starts in a fraction of a second

constexpr const char* kDescription = R"(<interface name="org.freedesktop.Application">
  <method name="Activate">
    <arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
  <method name="Open">
    <arg type="as" name="uris" direction="in"/>
    <arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
  <method name="ActivateAction">
    <arg type="s" name="action_name" direction="in"/>
    <arg type="av" name="parameter" direction="in"/>
    <arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
</interface>
<interface name="org.veltrane.veltrane.HandOver">
  <method name="Withdraw"/>
</interface>
)";

bool Is(const QDBusMessage& call, const QString& interface, QLatin1String member, QLatin1String signature)
{
    return (call.interface().isEmpty() || call.interface() == interface) && call.member() == member
        && call.signature() == signature;
}

bool Opens(const QDBusMessage& call)
{
    return Is(call, kApplicationInterface, QLatin1String("Open"), QLatin1String("asa{sv}"));
}

bool Activates(const QDBusMessage& call)
{
    return Is(call, kApplicationInterface, QLatin1String("Activate"), QLatin1String("a{sv}"));
}

void Answer(const QDBusMessage& answer)
{
    QDBusConnection::sessionBus().send(answer);
}

QStringList AddressesIn(const QDBusMessage& call)
{
    return Opens(call) ? call.arguments().first().toStringList() : QStringList();
}

Launch LaunchIn(const QDBusMessage& call)
{
    return Launch::From(qdbus_cast<QVariantMap>(call.arguments().last()));
}

// A desktop hands over what the user has chosen, wherever it is; that nothing came of it must be told.
void Open(const QString& address)
{
    if (const auto path = LocalPath(address.toStdString()))
        Runtime::Current().OpenDocument(FolderItem::FromPath(*path));
    else
        Runtime::Current().TellLater(
            IOException("« " + String(address.toStdString()) + " » n'est pas un fichier de cet ordinateur"));
}

void Open(const QDBusMessage& call, const QStringList& screens)
{
    const Launch launch = LaunchIn(call);
    if (!launch.Sees(screens)) {
        Answer(call.createErrorReply(kOnOtherScreen, QStringLiteral("The window is on another screen.")));
        return;
    }
    for (const QString& address : AddressesIn(call))
        Open(address);
    Answer(call.createReply());
    RaiseWindow(launch);
}

// Desktops do not try again: the call is sent on, and the bus starts the program for it if it knows how.
QDBusMessage SentOn(const QDBusMessage& call)
{
    const QDBusMessage answer = QDBusConnection::sessionBus().call(
        CallToOpen(AddressesIn(call), LaunchIn(call)), QDBus::Block, kPatience);
    return answer.type() == QDBusMessage::ReplyMessage
        ? call.createReply()
        : call.createErrorReply(answer.errorName(), answer.errorMessage());
}

} // namespace

QDBusMessage CallToOpen(const QStringList& addresses, const Launch& launch)
{
    const bool opens = !addresses.isEmpty();
    QDBusMessage call = QDBusMessage::createMethodCall(kServiceName, kServicePath, kApplicationInterface,
        opens ? QStringLiteral("Open") : QStringLiteral("Activate"));
    if (opens)
        call << addresses;
    return call << launch.PlatformData();
}

ApplicationService::ApplicationService(QStringList screens) : screens(std::move(screens))
{
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { AtEdge([this] { Take(); }); });
}

QString ApplicationService::introspect(const QString&) const
{
    return QLatin1String(kDescription);
}

// Calls that say too much, too little or something else are left to the toolkit, which refuses them.
bool ApplicationService::handleMessage(const QDBusMessage& message, const QDBusConnection&)
{
    if (Is(message, kHandOverInterface, QLatin1String("Withdraw"), QLatin1String())) {
        Withdraw(message.service());
        return true;
    }
    if (!Opens(message) && !Activates(message))
        return false;
    calls.push_back(message);
    // Taken when nothing else is left to do: a close that came before it, by another way, shall be seen
    // first.
    timer.start(0);
    return true;
}

// A call may have waited for long, and been taken back behind it: all that was sent until now is read first.
void ApplicationService::ReadOn()
{
    QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("GetId")));
    QCoreApplication::sendPostedEvents(this);
}

void ApplicationService::Take()
{
    ReadOn();
    // While the run is ending they wait for the end: whoever goes on then finds the settings stored.
    while (!calls.empty() && Runtime::Current().TakesDocuments()) {
        const QDBusMessage call = calls.front();
        calls.pop_front();
        Open(call, screens);
    }
}

void ApplicationService::Withdraw(const QString& sender)
{
    std::erase_if(calls, [&](const QDBusMessage& call) { return call.service() == sender; });
}

void ApplicationService::TurnAway()
{
    for (const QDBusMessage& call : std::exchange(calls, {})) {
        const bool ofLaterStart = LaunchIn(call).ofLaterStart;
        Answer(ofLaterStart ? call.createErrorReply(kEnding, QStringLiteral("The program is ending."))
                            : SentOn(call));
    }
}

} // namespace veltrane::qt
