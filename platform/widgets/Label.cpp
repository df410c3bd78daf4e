#include "platform/widgets/Label.h"

#include "platform/run/Runtime.h"

namespace veltrane {

String Label::Text() const
{
    RequireMainThread();
    return text;
}

void Label::Text(const String& shown)
{
    RequireMainThread();
    text = shown;
    Changed();
}

bool Label::TakeProperty(const Property& property)
{
    static constexpr PropertySetter<Label> kSetters[] = {
        { "Multiline", Store<&Label::multiline> },
        { "Selectable", Store<&Label::selectable> },
        { "Text", Store<&Label::text> },
        { "TextAlign", Store<&Label::textAlign> },
        { "TextColor", Store<&Label::textColor> },
        { "DataSource", Store<&Label::dataSource> },
        { "DataField", Store<&Label::dataField> },
    };
    return TakeFrom(kSetters, *this, property) || style.Take(property) || RectControl::TakeProperty(property);
}

} // namespace veltrane
