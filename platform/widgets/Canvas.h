#pragma once

#include <span>

#include "platform/pictures/Graphics.h"
#include "platform/widgets/Control.h"

namespace veltrane {

/// A drawing area.
class Canvas final : public RectControl {
public:
    /// Raised when the control must be drawn: the canvas, its surface, and the areas that need it (never
    /// empty; in the surface's units).
    Event<const Ref<Canvas>&, const Ref<Graphics>&, std::span<const Rect>> Paint;

    void Refresh(bool now) override;

    /// For bodies: runs Paint's handlers. A failure is told once behind the paint, not for each repaint of
    /// the same picture.
    void PaintOn(const Ref<Graphics>& surface, std::span<const Rect> areas);

    [[nodiscard]] bool AcceptFocus() const noexcept { return acceptFocus; }

protected:
    [[nodiscard]] bool TakeProperty(const Property& property) override;

private:
    bool useFocusRing = true, acceptFocus = false, acceptTabs = false;
    bool doubleBuffer = false, eraseBackground = true;
    bool failureTold = false;
};

} // namespace veltrane
