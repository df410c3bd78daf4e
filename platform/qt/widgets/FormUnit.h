#pragma once

#include <QFontMetricsF>
#include <QString>

#include "platform/widgets/Rect.h"

namespace veltrane::qt {

/// How wide the text is with room for its numbers to grow: a label that counts from 0 on must not be cut
/// when it comes to tens of thousands.
[[nodiscard]] double WidthWithGrowth(const QFontMetricsF& metrics, const QString& text);

/// The smallest unit, 1 or more, at which a box of that size holds so many logical pixels.
[[nodiscard]] double UnitToHold(double width, double height, const Rect& box);

} // namespace veltrane::qt
