#pragma once

#include <QMenuBar>

#include "platform/widgets/Menu.h"

namespace veltrane::qt {

/// Fills the bar with the tree below `root`; empties it when `root` is nil.
void ShowMenus(QMenuBar& bar, const Ref<MenuItem>& root);

} // namespace veltrane::qt
