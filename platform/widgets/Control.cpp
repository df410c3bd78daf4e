#include "platform/widgets/Control.h"

#include "platform/run/Runtime.h"
#include "platform/widgets/Window.h"

namespace veltrane {

bool RectControl::TakeProperty(const Property& property)
{
    static constexpr PropertySetter<RectControl> kSetters[] = {
        { "Index", Store<&RectControl::index> },
        { "Left", [](RectControl& c, const PropertyValue& v) { c.bounds.left = v.As<std::int64_t>(); } },
        { "Top", [](RectControl& c, const PropertyValue& v) { c.bounds.top = v.As<std::int64_t>(); } },
        { "Width", [](RectControl& c, const PropertyValue& v) { c.bounds.width = v.As<std::int64_t>(); } },
        { "Height", [](RectControl& c, const PropertyValue& v) { c.bounds.height = v.As<std::int64_t>(); } },
        { "LockLeft", Store<&RectControl::lockLeft> },
        { "LockTop", Store<&RectControl::lockTop> },
        { "LockRight", Store<&RectControl::lockRight> },
        { "LockBottom", Store<&RectControl::lockBottom> },
        { "TabIndex", Store<&RectControl::tabIndex> },
        { "TabPanelIndex", Store<&RectControl::tabPanelIndex> },
        { "TabStop", Store<&RectControl::tabStop> },
        { "AutoDeactivate", Store<&RectControl::autoDeactivate> },
        { "Enabled", Store<&RectControl::enabled> },
        { "HelpTag", Store<&RectControl::helpTag> },
        { "Visible", Store<&RectControl::visible> },
        { "Transparent", Store<&RectControl::transparent> },
        { "InitialParent", Store<&RectControl::initialParent> },
    };
    return TakeFrom(kSetters, *this, property);
}

void RectControl::Refresh(bool now)
{
    RequireMainThread();
    if (window != nullptr)
        window->RefreshControl(*this, now);
}

void RectControl::Changed()
{
    if (window != nullptr)
        window->ShowControl(*this);
}

void RectControl::Follow(std::int64_t widthGrowth, std::int64_t heightGrowth)
{
    const Rect before = bounds;
    // An edge that is not locked stays where it is seen from the left or the top.
    if (lockRight)
        (lockLeft ? bounds.width : bounds.left) += widthGrowth;
    if (lockBottom)
        (lockTop ? bounds.height : bounds.top) += heightGrowth;
    if (!(bounds == before))
        Changed();
}

bool TextStyle::Take(const Property& property)
{
    static constexpr PropertySetter<TextStyle> kSetters[] = {
        { "Bold", Store<&TextStyle::bold> },
        { "Italic", Store<&TextStyle::italic> },
        { "TextFont", Store<&TextStyle::font> },
        { "TextSize", Store<&TextStyle::size> },
        { "TextUnit", Store<&TextStyle::unit> },
        { "Underline", Store<&TextStyle::underline> },
    };
    return TakeFrom(kSetters, *this, property);
}

} // namespace veltrane
