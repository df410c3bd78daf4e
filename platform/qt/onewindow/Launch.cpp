#include "platform/qt/onewindow/Launch.h"

#include <algorithm>
#include <unistd.h>

#include "platform/qt/onewindow/X11.h"

namespace veltrane::qt {

namespace {

const QString kStartupId = QStringLiteral("desktop-startup-id");
const QString kActivationToken = QStringLiteral("activation-token");
const QString kScreens = QStringLiteral("veltrane-screens");

constexpr const char* kTimeMark = "_TIME";

// ":0.1" is another screen of the display ":0", and windows move between them.
QString WithoutScreenNumber(const QString& display)
{
    const qsizetype point = display.indexOf(QLatin1Char('.'), display.lastIndexOf(QLatin1Char(':')));
    return display.left(point);
}

QStringList ScreensOfThisProcess()
{
    const QString user = QString::number(getuid());
    QStringList screens;
    if (const QString display = qEnvironmentVariable("DISPLAY"); !display.isEmpty())
        screens << user + QStringLiteral(" x11 ") + WithoutScreenNumber(display);
    if (const QString display = qEnvironmentVariable("WAYLAND_DISPLAY"); !display.isEmpty()) {
        const bool whole = display.startsWith(QLatin1Char('/'));
        screens << user + QStringLiteral(" wayland ")
                + (whole ? display : qEnvironmentVariable("XDG_RUNTIME_DIR") + QLatin1Char('/') + display);
    }
    return screens;
}

} // namespace

Launch Launch::OfThisProcess()
{
    return { qgetenv("DESKTOP_STARTUP_ID"), qgetenv("XDG_ACTIVATION_TOKEN"), ScreensOfThisProcess(), true };
}

Launch Launch::From(const QVariantMap& platformData)
{
    return { platformData.value(kStartupId).toString().toUtf8(),
        platformData.value(kActivationToken).toString().toUtf8(), platformData.value(kScreens).toStringList(),
        platformData.contains(kScreens) };
}

QVariantMap Launch::PlatformData() const
{
    QVariantMap data;
    if (ofLaterStart)
        data.insert(kScreens, screens);
    if (!startupId.isEmpty())
        data.insert(kStartupId, QString::fromUtf8(startupId));
    if (!activationToken.isEmpty())
        data.insert(kActivationToken, QString::fromUtf8(activationToken));
    return data;
}

void Launch::StampTime()
{
    if (UserTime())
        return;
    if (const std::optional<quint32> now = ServerTimeOnX11())
        startupId = "veltrane-" + QByteArray::number(getpid()) + kTimeMark + QByteArray::number(*now);
}

std::optional<quint32> Launch::UserTime() const
{
    const qsizetype mark = startupId.lastIndexOf(kTimeMark);
    bool read = false;
    const quint32 time = mark < 0 ? 0 : startupId.mid(mark + qsizetype(strlen(kTimeMark))).toUInt(&read);
    return read ? std::optional(time) : std::nullopt;
}

bool Launch::Sees(const QStringList& others) const
{
    // Without a screen there is nowhere else to go.
    return screens.isEmpty() || std::any_of(screens.begin(), screens.end(), [&](const QString& screen) {
        return others.contains(screen);
    });
}

} // namespace veltrane::qt
