#include "platform/qt/FormUnit.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

namespace veltrane::qt {

namespace {

// Steps of a twentieth: fonts that differ by a hair give the same form.
constexpr double kStepsPerUnit = 20;

double Ratio(double needed, std::int64_t given)
{
    return given > 0 ? needed / static_cast<double>(given) : 1;
}

} // namespace

double WidthWithGrowth(const QFontMetricsF& metrics, const QString& text)
{
    static const QRegularExpression kNumber(QStringLiteral("[0-9]{1,5}"));
    const QString grown = QString(text).replace(kNumber, QStringLiteral("99999"));
    return std::max(metrics.horizontalAdvance(text), metrics.horizontalAdvance(grown));
}

double UnitToHold(double width, double height, const Rect& box)
{
    const double needed = std::max(Ratio(width, box.width), Ratio(height, box.height));
    return std::max(1.0, std::ceil(needed * kStepsPerUnit) / kStepsPerUnit);
}

} // namespace veltrane::qt
