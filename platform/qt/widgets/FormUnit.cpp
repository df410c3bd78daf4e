#include "platform/qt/widgets/FormUnit.h"

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

bool IsDigit(QChar sign)
{
    return sign >= QLatin1Char('0') && sign <= QLatin1Char('9');
}

// With five digits in place of each number, of each up to five digits of a longer one. By hand: to compile a
// pattern for it takes longer than all the measuring.
QString Grown(const QString& text)
{
    constexpr QLatin1String kMost("99999");
    QString grown;
    qsizetype digits = 0;
    for (const QChar sign : text) {
        const bool digit = IsDigit(sign);
        if (!digit)
            grown += sign;
        else if (digits == 0)
            grown += kMost;
        digits = digit ? (digits + 1) % kMost.size() : 0;
    }
    return grown;
}

} // namespace

double WidthWithGrowth(const QFontMetricsF& metrics, const QString& text)
{
    return std::max(metrics.horizontalAdvance(text), metrics.horizontalAdvance(Grown(text)));
}

double UnitToHold(double width, double height, const Rect& box)
{
    const double needed = std::max(Ratio(width, box.width), Ratio(height, box.height));
    return std::max(1.0, std::ceil(needed * kStepsPerUnit) / kStepsPerUnit);
}

} // namespace veltrane::qt
