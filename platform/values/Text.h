#pragma once

#include <cstdint>

#include "platform/values/Ref.h"
#include "platform/values/String.h"

namespace veltrane {

/// The second string type: text that was made to be read by people. Becomes a String where one is wanted.
class Text {
public:
    Text() noexcept = default;
    Text(const char* characters) : characters(characters) { }

    /// a followed by b.
    friend Text operator+(const Text& a, const Text& b) { return Text(a.characters + b.characters); }

    operator String() const { return characters; }

private:
    explicit Text(String characters) noexcept : characters(std::move(characters)) { }
    String characters;
};

/// How numbers and dates are written in some part of the world.
class Locale : public Counted { };

namespace Int64 {

/// The value in plain decimal digits. `locale` must be nil, for none; another raises
/// UnsupportedOperationException.
[[nodiscard]] Text ToText(std::int64_t value, const Ref<Locale>& locale);

} // namespace Int64

} // namespace veltrane
