#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "platform/qt/widgets/ControlView.h"
#include "platform/widgets/Window.h"

namespace veltrane::qt {

/// A window's content: the views of its controls, where their bounds say.
///
/// One widget unit is `Unit()` logical pixels: 1, or more where the system's font is too large for the
/// form's boxes.
class Form final : public QWidget {
public:
    /// `onUnit` is called when another font has given the form another unit, `onPaint` behind each paint.
    Form(Window& window, std::function<void()> onUnit, std::function<void()> onPaint);

    [[nodiscard]] double Unit() const noexcept { return unit; }

    /// That size in logical pixels.
    [[nodiscard]] QSize InPixels(std::int64_t width, std::int64_t height) const;

    /// From now on the form's size is the window's: what it becomes, the window takes.
    void FollowSize();

    /// Takes the unit that the texts and fonts at hand ask for; false when it is as before.
    bool RenewUnit();

    void ShowControl(const RectControl& control);
    void ShowDocument(const QString& name);
    void RefreshControl(const RectControl& control, bool now);

    /// Puts the keyboard's focus on the first control that takes it.
    void FocusFirst();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Naming {
        QWidget* named;
        const RectControl* label;
    };

    void MakeViews();
    void NameControls();
    void OrderFocus();
    void TakeOwnSize();
    void ShowNames();
    [[nodiscard]] ControlView* ViewOf(const RectControl& control) const;
    [[nodiscard]] const RectControl* ParentOf(const RectControl& control) const;
    [[nodiscard]] std::vector<ControlView*> ByTabIndex(const RectControl* parent) const;
    [[nodiscard]] std::vector<QWidget*> FocusChain() const;

    Window& window;
    std::function<void()> onUnit, onPaint;
    std::vector<std::unique_ptr<ControlView>> views;
    std::vector<Naming> namings;
    double unit = 1;
    bool followsSize = false, unitStale = false;
};

} // namespace veltrane::qt
