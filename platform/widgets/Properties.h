#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

#include "platform/values/String.h"

namespace veltrane {

/// A value in a stored block of properties.
class PropertyValue {
public:
    constexpr PropertyValue(std::same_as<bool> auto value) noexcept : value(value) { }
    constexpr PropertyValue(std::same_as<int> auto value) noexcept : value(std::int64_t { value }) { }
    constexpr PropertyValue(const char* value) noexcept : value(value) { }

    /// The value as a bool, std::int64_t or String.
    /// Raises UnsupportedOperationException when it is of another kind.
    template<class T>
    [[nodiscard]] T As() const;

private:
    std::variant<bool, std::int64_t, const char*> value;
};

template<>
bool PropertyValue::As<bool>() const;
template<>
std::int64_t PropertyValue::As<std::int64_t>() const;
template<>
String PropertyValue::As<String>() const;

/// One row of a property table.
struct Property {
    std::string_view name;
    PropertyValue value;
};

/// An object whose properties can be set by name.
class PropertyHolder {
public:
    virtual ~PropertyHolder() = default;

    /// Raises UnsupportedOperationException for a name that the object has not, or a value of another kind.
    void _SetProperty(const Property& property);

protected:
    /// Sets the property and answers true; false when the name is unknown to this class.
    [[nodiscard]] virtual bool TakeProperty(const Property& property) = 0;

    /// Called once behind each property set by name.
    virtual void PropertyTaken() { }
};

/// Applies a block of properties in its order.
void _SetProperties(PropertyHolder& object, std::span<const Property> block);

/// A row of a class's own table: how the property of that name is set.
template<class Class>
struct PropertySetter {
    std::string_view name;
    void (*set)(Class&, const PropertyValue&);
};

/// Stores a value in a field; for PropertySetter rows of properties that are plain fields.
template<auto Field, class Class>
void Store(Class& object, const PropertyValue& value)
{
    auto& field = object.*Field;
    field = value.As<std::remove_reference_t<decltype(field)>>();
}

/// Looks the property up in the class's table and sets it; false when the table has no such name.
template<class Class, std::size_t Count>
[[nodiscard]] bool TakeFrom(
    const PropertySetter<Class> (&table)[Count], Class& object, const Property& property)
{
    for (const PropertySetter<Class>& row : table) {
        if (row.name == property.name) {
            row.set(object, property.value);
            return true;
        }
    }
    return false;
}

} // namespace veltrane
