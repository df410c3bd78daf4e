#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVariantMap>
#include <optional>

namespace veltrane::qt {

/// How a start of the program came about, and where its user sits: what a later start tells the first one.
/// Source: Desktop Entry Specification 1.5, "D-Bus Activation", on platform data.
struct Launch {
    /// Of the startup notification protocol, for X11; its end "_TIME…" tells when the user asked. Empty for
    /// none.
    QByteArray startupId;
    /// Of the xdg-activation protocol, for Wayland. Empty for none.
    QByteArray activationToken;
    /// The screens that a window of this start could be on, with the user's number. Empty when there is none,
    /// or when the caller does not tell, as desktops do.
    QStringList screens;
    /// Whether a start of this program tells it, and not a desktop.
    bool ofLaterStart = false;

    /// Read from the environment, before the toolkit takes the tokens out of it.
    [[nodiscard]] static Launch OfThisProcess();

    [[nodiscard]] static Launch From(const QVariantMap& platformData);
    [[nodiscard]] QVariantMap PlatformData() const;

    /// Where nobody has noted when the user asked, on X11: now.
    void StampTime();

    /// When the user asked, by the X server's clock in milliseconds; nothing when it is not known.
    [[nodiscard]] std::optional<quint32> UserTime() const;

    /// Whether a window on one of `others` is before the eyes of who asked.
    [[nodiscard]] bool Sees(const QStringList& others) const;
};

} // namespace veltrane::qt
