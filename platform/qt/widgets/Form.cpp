#include "platform/qt/widgets/Form.h"

#include <QEvent>
#include <QLabel>
#include <QTimer>
#include <algorithm>
#include <cmath>

#include "platform/qt/Text.h"
#include "platform/qt/widgets/Accessibility.h"
#include "platform/qt/widgets/Edge.h"
#include "platform/widgets/Label.h"
#include "platform/widgets/Slider.h"

namespace veltrane::qt {

namespace {

bool SameRow(const Rect& a, const Rect& b)
{
    return a.top < b.top + b.height && b.top < a.top + a.height;
}

// Whether the label is the kind of neighbour that people read as the control's name.
bool StandsLeftOf(const RectControl& label, const RectControl& control)
{
    return Compare(label.InitialParent(), control.InitialParent()) == 0
        && SameRow(label.Bounds(), control.Bounds())
        && label.Bounds().left + label.Bounds().width <= control.Bounds().left;
}

} // namespace

Form::Form(Window& window, std::function<void()> onUnit, std::function<void()> onPaint)
    : window(window), onUnit(std::move(onUnit)), onPaint(std::move(onPaint))
{
    MakeViews();
    NameControls();
    OrderFocus();
    for (const auto& view : views)
        ShowControl(view->Shown());
}

void Form::MakeViews()
{
    for (const Ref<Control>& control : window.Controls()) {
        const auto shown = Cast<RectControl>(control);
        if (!shown)
            continue;
        const RectControl* const parent = ParentOf(*shown);
        ControlView* const box = parent != nullptr ? ViewOf(*parent) : nullptr;
        if (auto view = MakeControlView(box != nullptr ? box->Widget() : *this, *shown))
            views.push_back(std::move(view));
    }
}

const RectControl* Form::ParentOf(const RectControl& control) const
{
    if (control.InitialParent().Empty())
        return nullptr;
    return Cast<RectControl>(window._ControlByName(control.InitialParent())).Get();
}

ControlView* Form::ViewOf(const RectControl& control) const
{
    const auto found = std::find_if(
        views.begin(), views.end(), [&](const auto& view) { return &view->Shown() == &control; });
    return found != views.end() ? found->get() : nullptr;
}

// A slider has no text of its own: the label to its left is its name.
void Form::NameControls()
{
    for (const auto& view : views) {
        const RectControl* nearest = nullptr;
        for (const auto& other : views) {
            const RectControl& label = other->Shown();
            const bool names = dynamic_cast<Slider*>(&view->Shown()) != nullptr
                && dynamic_cast<const Label*>(&label) != nullptr && StandsLeftOf(label, view->Shown());
            if (names && (nearest == nullptr || label.Bounds().left > nearest->Bounds().left))
                nearest = &label;
        }
        if (nearest == nullptr)
            continue;
        static_cast<QLabel&>(ViewOf(*nearest)->Widget()).setBuddy(&view->Widget());
        namings.push_back({ &view->Widget(), nearest });
    }
}

void Form::ShowNames()
{
    for (const Naming& naming : namings) {
        const String text = static_cast<const Label*>(naming.label)->Text();
        NameForReaders(*naming.named, ToLine(text).trimmed());
    }
}

std::vector<ControlView*> Form::ByTabIndex(const RectControl* parent) const
{
    std::vector<ControlView*> level;
    for (const auto& view : views) {
        if (ParentOf(view->Shown()) == parent)
            level.push_back(view.get());
    }
    std::stable_sort(level.begin(), level.end(), [](const ControlView* a, const ControlView* b) {
        return a->Shown().TabIndex() < b->Shown().TabIndex();
    });
    return level;
}

// The widgets that take the keyboard's focus, in its order. The others have no place in it: the toolkit
// passes over a link to a widget that takes no focus, and the order would fall apart there.
std::vector<QWidget*> Form::FocusChain() const
{
    std::vector<QWidget*> chain;
    const auto add = [&chain](const ControlView& view) {
        if ((view.Widget().focusPolicy() & Qt::TabFocus) != 0)
            chain.push_back(&view.Widget());
    };
    for (const ControlView* view : ByTabIndex(nullptr)) {
        add(*view);
        for (const ControlView* child : ByTabIndex(&view->Shown()))
            add(*child);
    }
    return chain;
}

void Form::OrderFocus()
{
    const std::vector<QWidget*> chain = FocusChain();
    for (std::size_t i = 1; i < chain.size(); ++i)
        setTabOrder(chain[i - 1], chain[i]);
}

void Form::FocusFirst()
{
    for (QWidget* const widget : FocusChain()) {
        if (widget->isEnabled() && !widget->isHidden()) {
            widget->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
}

QSize Form::InPixels(std::int64_t width, std::int64_t height) const
{
    const auto mapped = [this](std::int64_t units) {
        return static_cast<int>(std::lround(static_cast<double>(units) * unit));
    };
    return { mapped(width), mapped(height) };
}

bool Form::RenewUnit()
{
    unitStale = false;
    double needed = 1;
    for (const auto& view : views) {
        view->Widget().ensurePolished();
        needed = std::max(needed, view->NeededUnit());
    }
    if (needed == unit)
        return false;
    unit = needed;
    for (const auto& view : views)
        ShowControl(view->Shown());
    return true;
}

void Form::ShowControl(const RectControl& control)
{
    ControlView* const view = ViewOf(control);
    if (view == nullptr)
        return;
    const RectControl* const parent = ParentOf(control);
    const bool inBox = parent != nullptr && ViewOf(*parent) != nullptr;
    const Rect origin = inBox ? parent->Bounds() : Rect {};
    view->Show(unit, QPointF(static_cast<double>(origin.left), static_cast<double>(origin.top)));
    ShowNames();
}

void Form::ShowDocument(const QString& name)
{
    for (const auto& view : views)
        view->ShowDocument(name);
}

void Form::RefreshControl(const RectControl& control, bool now)
{
    if (ControlView* const view = ViewOf(control))
        view->Refresh(now);
}

void Form::FollowSize()
{
    followsSize = true;
    TakeOwnSize();
}

void Form::TakeOwnSize()
{
    const auto units = [this](int pixels) { return std::lround(pixels / unit); };
    const std::int64_t newWidth = units(width());
    const std::int64_t newHeight = units(height());
    if (newWidth != window.Width() || newHeight != window.Height())
        window.TakeSize(newWidth, newHeight);
}

void Form::resizeEvent(QResizeEvent*)
{
    if (followsSize)
        AtEdge([this] { TakeOwnSize(); });
}

void Form::paintEvent(QPaintEvent*)
{
    AtEdge(onPaint);
}

// The widgets inside hear of a new font behind this event: it is measured at the next turn.
void Form::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    const bool measures = event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange;
    if (measures && !std::exchange(unitStale, true))
        QTimer::singleShot(0, this, [this] {
            AtEdge([this] {
                if (RenewUnit())
                    onUnit();
            });
        });
}

} // namespace veltrane::qt
