#include "platform/widgets/Properties.h"

#include "platform/values/Exceptions.h"

namespace veltrane {

namespace {

template<class T, class Stored>
T Take(const Stored& value)
{
    if (const T* const held = std::get_if<T>(&value))
        return *held;
    throw UnsupportedOperationException("valeur de propriété d'un autre type");
}

} // namespace

template<>
bool PropertyValue::As<bool>() const
{
    return Take<bool>(value);
}

template<>
std::int64_t PropertyValue::As<std::int64_t>() const
{
    return Take<std::int64_t>(value);
}

template<>
String PropertyValue::As<String>() const
{
    return Take<const char*>(value);
}

void PropertyHolder::_SetProperty(const Property& property)
{
    if (!TakeProperty(property))
        throw UnsupportedOperationException("propriété inconnue : " + String(property.name));
    PropertyTaken();
}

void _SetProperties(PropertyHolder& object, std::span<const Property> block)
{
    for (const Property& property : block)
        object._SetProperty(property);
}

} // namespace veltrane
