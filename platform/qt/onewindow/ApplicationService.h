#pragma once

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QTimer>
#include <deque>

namespace veltrane::qt {

inline const QString kServiceName = QStringLiteral("org.veltrane.veltrane");
inline const QString kServicePath = QStringLiteral("/org/veltrane/veltrane");
inline const QString kApplicationInterface = QStringLiteral("org.freedesktop.Application");

/// Takes back what the sender has asked for and no longer waits for. Our own: for later starts.
inline const QString kHandOverInterface = QStringLiteral("org.veltrane.veltrane.HandOver");
inline const QString kWithdraw = QStringLiteral("Withdraw");

/// Errors that a later start is answered with: the window here is on another screen; it is being closed.
inline const QString kOnOtherScreen = QStringLiteral("org.veltrane.veltrane.Error.OnOtherScreen");
inline const QString kEnding = QStringLiteral("org.veltrane.veltrane.Error.Ending");

struct Launch;

/// The call that has the owner of the name open those addresses, or only come to the front when there are
/// none.
[[nodiscard]] QDBusMessage CallToOpen(const QStringList& addresses, const Launch& launch);

/// The program as the session bus knows it: opens documents and brings the window to the front.
/// Source: Desktop Entry Specification 1.5, "D-Bus Activation".
class ApplicationService final : public QDBusVirtualObject {
public:
    /// `screens`: those that the window may be on.
    explicit ApplicationService(QStringList screens);

    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

    /// Answers the calls that came while the run was ending, once the name is given back: a later start is
    /// told to go on by itself; for anybody else the bus starts the program afresh.
    void TurnAway();

private:
    void ReadOn();
    void Take();
    void Withdraw(const QString& sender);

    QStringList screens;
    std::deque<QDBusMessage> calls; // in the order in which they came; not yet answered
    QTimer timer;
};

} // namespace veltrane::qt
