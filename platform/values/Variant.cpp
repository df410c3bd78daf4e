#include "platform/values/Variant.h"

namespace veltrane {

Variant StringToVariant(const String& text)
{
    Variant made;
    made.value = text;
    return made;
}

String VariantToString(const Variant& value)
{
    const String* const text = std::get_if<String>(&value.value);
    return text != nullptr ? *text : String();
}

} // namespace veltrane
