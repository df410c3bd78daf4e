#pragma once

#include "platform/values/String.h"

namespace veltrane {

/// The system's reason in French, without a full stop: "plus de place sur le disque". `error` is an errno.
[[nodiscard]] String SystemReason(int error);

/// Raises IOException with that number and the message "what : reason".
[[noreturn]] void RaiseIO(const String& what, int error);

} // namespace veltrane
