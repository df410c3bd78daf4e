#include "platform/qt/onewindow/OneWindow.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QFile>
#include <QThread>
#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/UriList.h"
#include "platform/qt/onewindow/ApplicationService.h"
#include "platform/qt/onewindow/Launch.h"

namespace veltrane {

namespace {

using namespace qt;

// How long an earlier start may take to answer. One that is saving a large picture takes seconds; one that
// hangs shall not keep a person from their file.
constexpr int kPatience = 10'000; // ms
constexpr int kBetweenAttempts = 20; // ms

// Flags and answers of RequestName. Source: D-Bus Specification 0.41, "org.freedesktop.DBus.RequestName".
constexpr uint kWaitInQueue = 0, kDoNotQueue = 4;
constexpr uint kAnotherOwnsIt = 3;

// Asked before the bus library is. Told of no bus it would start one, and a process for it; so it is told of
// the usual place, where there is none.
bool HasSessionBus()
{
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return true;
    const QByteArray usual = qgetenv("XDG_RUNTIME_DIR") + "/bus";
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + usual);
    struct stat about { };
    return stat(usual.constData(), &about) == 0 && S_ISSOCK(about.st_mode) && about.st_uid == getuid();
}

QDBusMessage ToBus(const char* method, const QVariantList& arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
        QLatin1String(method));
    call.setArguments(arguments);
    return call;
}

QStringList AddressesOf(const std::vector<Ref<FolderItem>>& documents)
{
    QStringList addresses;
    for (const Ref<FolderItem>& document : documents)
        addresses << QString::fromStdString(FileAddress(document->Path()));
    return addresses;
}

QDBusMessage Withdrawal()
{
    return QDBusMessage::createMethodCall(kServiceName, kServicePath, kHandOverInterface, kWithdraw);
}

} // namespace

struct OneWindow::Bus {
    QDBusConnection connection = QDBusConnection::sessionBus();
    Launch launch = Launch::OfThisProcess();
    ApplicationService service { launch.screens };

    /// Asks for the name. Whether an earlier start has it; where the bus gives it to nobody, none has.
    [[nodiscard]] bool AnotherOwnsName(uint flags)
    {
        const QDBusMessage answer
            = connection.call(ToBus("RequestName", { kServiceName, flags }), QDBus::Block, kPatience);
        return answer.type() == QDBusMessage::ReplyMessage
            && answer.arguments().value(0).toUInt() == kAnotherOwnsIt;
    }

    void Release() { connection.call(ToBus("ReleaseName", { kServiceName }), QDBus::Block, kPatience); }
};

OneWindow::OneWindow()
{
    if (!HasSessionBus())
        return;
    auto fresh = std::make_unique<Bus>();
    // Before the name is asked for: what follows it must find somebody at home.
    if (fresh->connection.registerVirtualObject(kServicePath, &fresh->service))
        bus = std::move(fresh);
}

OneWindow::~OneWindow() = default;

bool OneWindow::HandOver(const std::vector<Ref<FolderItem>>& documents)
{
    if (!bus || !bus->AnotherOwnsName(kDoNotQueue))
        return false;
    bus->launch.StampTime();
    QDBusMessage call = CallToOpen(AddressesOf(documents), bus->launch);
    call.setAutoStartService(false); // one start too many is under way already
    const QDeadlineTimer end(kPatience);
    while (!end.hasExpired()) {
        const QDBusMessage answer
            = bus->connection.call(call, QDBus::Block, std::max(1, static_cast<int>(end.remainingTime())));
        if (answer.type() == QDBusMessage::ReplyMessage)
            return true;
        if (answer.errorName() == kOnOtherScreen)
            return false;
        // It has just ended, or is about to. Whoever comes next asks for the name: that may be this start.
        if (!bus->AnotherOwnsName(kDoNotQueue))
            return false;
        QThread::msleep(kBetweenAttempts);
    }
    // It hangs. Should it come to itself it is not to convert the same files once more; when it is gone, its
    // name falls to this start.
    bus->connection.send(Withdrawal());
    (void)bus->AnotherOwnsName(kWaitInQueue);
    return false;
}

void OneWindow::Leave()
{
    if (!bus)
        return;
    bus->Release();
    // What was sent to the name before has arrived with the answer to that call, and still wants one.
    QCoreApplication::sendPostedEvents(&bus->service);
    bus->service.TurnAway();
    bus.reset();
}

} // namespace veltrane
