#include "platform/qt/widgets/ControlView.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionGroupBox>
#include <cmath>

#include "platform/qt/Text.h"
#include "platform/qt/widgets/CanvasView.h"
#include "platform/qt/widgets/Edge.h"
#include "platform/qt/widgets/FormUnit.h"
#include "platform/widgets/Canvas.h"
#include "platform/widgets/CheckBox.h"
#include "platform/widgets/GroupBox.h"
#include "platform/widgets/Label.h"
#include "platform/widgets/Slider.h"

namespace veltrane::qt {

namespace {

// Only what the style asks for is set, so that the rest stays the theme's own, also when the theme changes.
QFont FontOf(const TextStyle& style)
{
    QFont font;
    if (!style.font.Empty() && Compare(style.font, "System") != 0)
        font.setFamily(ToQString(style.font));
    if (style.size > 0)
        font.setPointSizeF(static_cast<double>(style.size));
    if (style.bold)
        font.setBold(true);
    if (style.italic)
        font.setItalic(true);
    if (style.underline)
        font.setUnderline(true);
    return font;
}

Qt::FocusPolicy FocusOf(const RectControl& control)
{
    return control.TabStop() ? Qt::StrongFocus : Qt::ClickFocus;
}

class CheckBoxView final : public ControlView {
public:
    CheckBoxView(QWidget& parent, CheckBox& control)
        : ControlView(control, *new QCheckBox(&parent))
        , control(control)
        , box(static_cast<QCheckBox&>(Widget()))
    {
        QObject::connect(&box, &QCheckBox::toggled, &box,
            [this](bool ticked) { AtEdge([&] { this->control.TakeValue(ticked); }); });
    }
    [[nodiscard]] double NeededUnit() const override
    {
        const int indicator = box.style()->pixelMetric(QStyle::PM_IndicatorHeight, nullptr, &box);
        const double height = std::max<double>(QFontMetricsF(box.font()).height(), indicator);
        return UnitToHold(box.sizeHint().width(), height, control.Bounds());
    }

private:
    void ShowContent() override
    {
        const QSignalBlocker quiet(box);
        box.setFocusPolicy(FocusOf(control));
        box.setFont(FontOf(control.Style()));
        box.setText(WithoutMnemonics(ToLine(control.Caption())));
        box.setChecked(control.Value());
    }

    CheckBox& control;
    QCheckBox& box;
};

class SliderView final : public ControlView {
public:
    SliderView(QWidget& parent, Slider& control)
        : ControlView(control, *new QSlider(Qt::Horizontal, &parent))
        , control(control)
        , slider(static_cast<QSlider&>(Widget()))
    {
        QObject::connect(&slider, &QSlider::valueChanged, &slider,
            [this](int value) { AtEdge([&] { this->control.TakeValue(value); }); });
    }
    [[nodiscard]] double NeededUnit() const override
    {
        const int thickness = slider.style()->pixelMetric(QStyle::PM_SliderThickness, nullptr, &slider);
        return UnitToHold(0, thickness, control.Bounds());
    }

private:
    void ShowContent() override
    {
        const QSignalBlocker quiet(slider);
        slider.setFocusPolicy(control.TabStop() ? Qt::WheelFocus : Qt::ClickFocus);
        slider.setRange(static_cast<int>(control.Minimum()), static_cast<int>(control.Maximum()));
        slider.setSingleStep(static_cast<int>(control.LineStep()));
        slider.setPageStep(static_cast<int>(control.PageStep()));
        slider.setTracking(control.LiveScroll());
        slider.setValue(static_cast<int>(control.Value()));
    }

    Slider& control;
    QSlider& slider;
};

class LabelView final : public ControlView {
public:
    LabelView(QWidget& parent, Label& control)
        : ControlView(control, *new QLabel(&parent)), control(control), label(static_cast<QLabel&>(Widget()))
    {
        label.setTextFormat(Qt::PlainText);
    }
    [[nodiscard]] double NeededUnit() const override
    {
        if (control.Multiline())
            return 1;
        const QFontMetricsF metrics(label.font());
        return UnitToHold(
            WidthWithGrowth(metrics, ToLine(control.Text())), metrics.height(), control.Bounds());
    }

private:
    void ShowContent() override
    {
        label.setFont(FontOf(control.Style()));
        label.setAlignment(Qt::AlignVCenter | Horizontal());
        label.setWordWrap(control.Multiline());
        label.setTextInteractionFlags(control.Selectable()
                ? Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard
                : Qt::NoTextInteraction);
        if (control.TextColor() != 0) {
            QPalette colours;
            colours.setColor(QPalette::WindowText, QColor::fromRgb(control.TextColor()));
            label.setPalette(colours);
        }
        const QString text = ToLine(control.Text());
        // A label that names another control takes "&" for that control's mnemonic.
        label.setText(label.buddy() != nullptr ? WithoutMnemonics(text) : text);
    }
    [[nodiscard]] Qt::Alignment Horizontal() const
    {
        switch (control.TextAlign()) {
        case Label::Align::Centre: return Qt::AlignHCenter;
        case Label::Align::Right: return Qt::AlignRight;
        default: return Qt::AlignLeft;
        }
    }

    Label& control;
    QLabel& label;
};

class GroupBoxView final : public ControlView {
public:
    GroupBoxView(QWidget& parent, GroupBox& control)
        : ControlView(control, *new QGroupBox(&parent))
        , control(control)
        , box(static_cast<QGroupBox&>(Widget()))
    {
    }
    [[nodiscard]] double NeededUnit() const override
    {
        return UnitToHold(box.minimumSizeHint().width(), 0, control.Bounds());
    }

private:
    void ShowContent() override
    {
        box.setFont(FontOf(control.Style()));
        box.setTitle(WithoutMnemonics(ToLine(control.Caption())));
    }

    GroupBox& control;
    QGroupBox& box;
};

} // namespace

void ControlView::Show(double unit, QPointF origin)
{
    const Rect& at = control.Bounds();
    // Edges are mapped, not sizes: what touches in units touches on the screen.
    const auto mapped = [unit](double units) { return static_cast<int>(std::lround(units * unit)); };
    const double left = static_cast<double>(at.left) - origin.x();
    const double top = static_cast<double>(at.top) - origin.y();
    const QPoint from(mapped(left), mapped(top));
    const QPoint to(
        mapped(left + static_cast<double>(at.width)), mapped(top + static_cast<double>(at.height)));
    widget.setGeometry(from.x(), from.y(), std::max(0, to.x() - from.x()), std::max(0, to.y() - from.y()));
    widget.setEnabled(control.Enabled());
    widget.setVisible(control.Visible());
    widget.setToolTip(ToLine(control.HelpTag()).toHtmlEscaped());
    ShowContent();
}

void ControlView::Refresh(bool now)
{
    if (now)
        widget.repaint();
    else
        widget.update();
}

std::unique_ptr<ControlView> MakeControlView(QWidget& parent, RectControl& control)
{
    if (auto* const canvas = dynamic_cast<Canvas*>(&control))
        return std::make_unique<CanvasView>(parent, *canvas);
    if (auto* const checkBox = dynamic_cast<CheckBox*>(&control))
        return std::make_unique<CheckBoxView>(parent, *checkBox);
    if (auto* const slider = dynamic_cast<Slider*>(&control))
        return std::make_unique<SliderView>(parent, *slider);
    if (auto* const label = dynamic_cast<Label*>(&control))
        return std::make_unique<LabelView>(parent, *label);
    if (auto* const groupBox = dynamic_cast<GroupBox*>(&control))
        return std::make_unique<GroupBoxView>(parent, *groupBox);
    return nullptr;
}

} // namespace veltrane::qt
