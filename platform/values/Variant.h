#pragma once

#include <variant>

#include "platform/values/String.h"

namespace veltrane {

/// One value together with its kind. Strings are the one kind there is use for; a Variant that holds none
/// is nil.
class Variant {
public:
    Variant() noexcept = default;

    friend Variant StringToVariant(const String& text);

    friend String VariantToString(const Variant& value);

private:
    std::variant<std::monostate, String> value;
};

/// Wraps the string.
[[nodiscard]] Variant StringToVariant(const String& text);

/// The string it holds, unchanged; empty for nil.
[[nodiscard]] String VariantToString(const Variant& value);

} // namespace veltrane
