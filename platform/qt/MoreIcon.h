#pragma once

#include <QIcon>

namespace veltrane::qt {

/// Two angles that say that there is more, drawn in the colour of buttons' text, sharp at every size.
[[nodiscard]] QIcon MoreIcon();

} // namespace veltrane::qt
