#pragma once

#include "platform/qt/onewindow/Launch.h"

namespace veltrane::qt {

/// Brings the program's window to the front, because the user asked for it by that launch. While it is not
/// shown yet there is nothing to bring.
void RaiseWindow(const Launch& launch);

} // namespace veltrane::qt
