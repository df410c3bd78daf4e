#pragma once

#include <QByteArray>
#include <QWindow>
#include <optional>

namespace veltrane::qt {

/// What the time is by the X server's clock, in milliseconds; nothing when no X server is named or answers.
/// Makes a connection of its own: needs no toolkit.
[[nodiscard]] std::optional<quint32> ServerTimeOnX11();

/// Asks the window manager to give the window the focus, because the user asked for it at `time` (the X
/// server's clock). False, and nothing is done, where the toolkit does not run on X11.
/// Source: Extended Window Manager Hints 1.5, "_NET_ACTIVE_WINDOW".
bool ActivateOnX11(const QWindow& window, quint32 time);

/// Tells the desktop that the start of that ID has led to a window, so that it no longer shows a busy
/// pointer. Nothing where the toolkit does not run on X11.
/// Source: Startup Notification Protocol Specification 0.2.
void EndStartupOnX11(const QByteArray& startupId);

} // namespace veltrane::qt
