#include "platform/widgets/CheckBox.h"

#include "platform/run/Runtime.h"

namespace veltrane {

bool CheckBox::Value() const
{
    RequireMainThread();
    return value;
}

void CheckBox::SetValue(bool ticked)
{
    RequireMainThread();
    value = ticked;
    Changed();
}

bool CheckBox::TakeProperty(const Property& property)
{
    static constexpr PropertySetter<CheckBox> kSetters[] = {
        { "Caption", Store<&CheckBox::caption> },
        { "State", Store<&CheckBox::state> },
        { "Value", Store<&CheckBox::value> },
        { "DataField", Store<&CheckBox::dataField> },
        { "DataSource", Store<&CheckBox::dataSource> },
    };
    return TakeFrom(kSetters, *this, property) || style.Take(property) || RectControl::TakeProperty(property);
}

} // namespace veltrane
