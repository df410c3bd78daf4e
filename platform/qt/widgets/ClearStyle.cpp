#include "platform/qt/widgets/ClearStyle.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>
#include <algorithm>
#include <cmath>

#include "platform/qt/MoreIcon.h"

namespace veltrane::qt {

namespace {

// Web Content Accessibility Guidelines 2.1, 1.4.11, and some to spare: a group shades the window a little.
constexpr double kContrast = 3.2;

// Web Content Accessibility Guidelines 2.1, relative luminance.
double Luminance(const QColor& colour)
{
    const auto linear
        = [](double part) { return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

double Contrast(const QColor& one, const QColor& other)
{
    const auto [darker, lighter] = std::minmax({ Luminance(one), Luminance(other) });
    return (lighter + 0.05) / (darker + 0.05);
}

// As the screen will show it, in 8 bits.
QColor Mixed(const QColor& back, const QColor& text, double share)
{
    const auto part
        = [share](float from, float to) { return from + static_cast<float>(share) * (to - from); };
    return { QColor::fromRgbF(
        part(back.redF(), text.redF()), part(back.greenF(), text.greenF()), part(back.blueF(), text.blueF()))
                 .rgb() };
}

// Where the focus has come by the keyboard, as the style does.
bool TellsFocus(const QStyleOption& option)
{
    constexpr QStyle::State kTold = QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
    return (option.state & kTold) == kTold;
}

// As little of the text's colour as stands out from the window; all of it where the style tells the focus by
// the colour of the very lines that are drawn over here.
QColor Outline(const QStyleOption& option)
{
    const QColor back = option.palette.color(QPalette::Window);
    const QColor text = option.palette.color(QPalette::WindowText);
    double share = TellsFocus(option) ? 1 : 0;
    while (share < 1 && Contrast(back, Mixed(back, text, share)) < kContrast)
        share += 0.03125;
    return Mixed(back, text, share);
}

// Along the middle of the pixels, where the style draws its own.
void DrawOutline(QPainter& painter, const QRect& rect, const QColor& colour, double radius)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0.5, 0.5);
    painter.setPen(colour);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect, radius, radius);
    painter.restore();
}

} // namespace

void ClearStyle::Install()
{
    const QString name = QApplication::style()->name();
    if (name.compare(QLatin1String("fusion"), Qt::CaseInsensitive) == 0)
        QApplication::setStyle(new ClearStyle(name));
}

void ClearStyle::drawPrimitive(
    PrimitiveElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_IndicatorCheckBox)
        DrawOutline(*painter, option->rect.adjusted(0, 0, -1, -1), Outline(*option), 0);
}

void ClearStyle::drawComplexControl(
    ComplexControl control, const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control != CC_Slider)
        return;
    const QRect handle = subControlRect(control, option, SC_SliderHandle, widget).adjusted(1, 1, -1, -1);
    const QRect groove = subControlRect(control, option, SC_SliderGroove, widget).adjusted(1, 1, -1, -1);
    const QColor outline = Outline(*option);
    DrawOutline(*painter, handle.adjusted(0, 0, -1, -1), outline, 2);
    painter->save();
    painter->setClipRegion(QRegion(groove).subtracted(handle)); // which stands before it
    DrawOutline(*painter, groove.adjusted(0, 0, -1, -1), outline, 1);
    painter->restore();
}

// The icon's file would make the toolkit load its readers of all picture formats, some milliseconds of a
// start.
QIcon ClearStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const
{
    if (icon == SP_ToolBarHorizontalExtensionButton)
        return MoreIcon();
    return QProxyStyle::standardIcon(icon, option, widget);
}

} // namespace veltrane::qt
