#pragma once

#include <QProxyStyle>

namespace veltrane::qt {

/// The toolkit's own style with outlines that can be seen in every theme: it derives those of check boxes and
/// sliders from the window's colour by darkening it, which leaves nothing of them on dark windows. And with a
/// drawn icon where the toolkit's menu bar, as soon as it is made, asks for one out of a file.
class ClearStyle final : public QProxyStyle {
public:
    /// Makes it the application's, if that has the toolkit's own style; a desktop's style is left alone.
    static void Install();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
        const QWidget* widget) const override;
    [[nodiscard]] QIcon standardIcon(
        StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const override;

private:
    using QProxyStyle::QProxyStyle;
};

} // namespace veltrane::qt
