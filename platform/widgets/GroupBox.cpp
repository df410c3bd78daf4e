#include "platform/widgets/GroupBox.h"

namespace veltrane {

bool GroupBox::TakeProperty(const Property& property)
{
    static constexpr PropertySetter<GroupBox> kSetters[] = {
        { "Caption", Store<&GroupBox::caption> },
    };
    return TakeFrom(kSetters, *this, property) || style.Take(property) || RectControl::TakeProperty(property);
}

} // namespace veltrane
