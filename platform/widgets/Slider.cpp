#include "platform/widgets/Slider.h"

#include <algorithm>

#include "platform/run/Runtime.h"

namespace veltrane {

std::int64_t Slider::Value() const
{
    RequireMainThread();
    return value;
}

void Slider::Value(std::int64_t position)
{
    RequireMainThread();
    if (!Move(position))
        return;
    Changed();
    ValueChanged.Raise(Ref<Slider>(this));
}

void Slider::TakeValue(std::int64_t position)
{
    if (Move(position))
        Runtime::Current().Guard([self = Ref<Slider>(this)] { self->ValueChanged.Raise(self); });
}

void Slider::RaiseOpen()
{
    Runtime::Current().Guard([self = Ref<Slider>(this)] { self->Open.Raise(self); });
}

bool Slider::Move(std::int64_t position)
{
    const std::int64_t kept = std::clamp(position, minimum, std::max(minimum, maximum));
    return std::exchange(value, kept) != kept;
}

bool Slider::TakeProperty(const Property& property)
{
    static constexpr PropertySetter<Slider> kSetters[] = {
        { "Value", [](Slider& s, const PropertyValue& v) { s.Value(v.As<std::int64_t>()); } },
        { "Minimum", Store<&Slider::minimum> },
        { "Maximum", Store<&Slider::maximum> },
        { "LineStep", Store<&Slider::lineStep> },
        { "LiveScroll", Store<&Slider::liveScroll> },
        { "PageStep", Store<&Slider::pageStep> },
        { "TickStyle", Store<&Slider::tickStyle> },
    };
    return TakeFrom(kSetters, *this, property) || RectControl::TakeProperty(property);
}

} // namespace veltrane
