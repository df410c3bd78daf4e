#include "platform/widgets/Canvas.h"

#include "platform/run/Runtime.h"
#include "platform/values/Exceptions.h"

namespace veltrane {

bool Canvas::TakeProperty(const Property& property)
{
    static constexpr PropertySetter<Canvas> kSetters[] = {
        { "UseFocusRing", Store<&Canvas::useFocusRing> },
        { "AcceptFocus", Store<&Canvas::acceptFocus> },
        { "AcceptTabs", Store<&Canvas::acceptTabs> },
        { "DoubleBuffer", Store<&Canvas::doubleBuffer> },
        { "EraseBackground", Store<&Canvas::eraseBackground> },
    };
    return TakeFrom(kSetters, *this, property) || RectControl::TakeProperty(property);
}

void Canvas::Refresh(bool now)
{
    failureTold = false;
    RectControl::Refresh(now);
}

void Canvas::PaintOn(const Ref<Graphics>& surface, std::span<const Rect> areas)
{
    const Ref<Canvas> self(this);
    try {
        Paint.Raise(self, surface, areas);
    } catch (const RuntimeException& failure) {
        // A box now would have to be painted inside this paint.
        if (!std::exchange(failureTold, true))
            Runtime::Current().TellLater(failure);
    }
}

} // namespace veltrane
