#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace veltrane {

/// Text: immutable bytes held by a counted reference, UTF-8 by convention. A nil String is the empty one.
///
/// A character is a valid UTF-8 sequence, or one byte that belongs to none: file names hold any bytes.
/// Has no `==` on purpose: ask Compare (which passes over the case of ASCII letters) or compare Bytes().
class String {
public:
    String() noexcept = default;
    String(const char* text); ///< nil gives the empty String
    explicit String(std::string text);
    explicit String(std::string_view text);

    /// The bytes, valid as long as this String.
    [[nodiscard]] std::string_view Bytes() const noexcept
    {
        return bytes ? std::string_view(*bytes) : std::string_view();
    }
    [[nodiscard]] bool Empty() const noexcept { return Bytes().empty(); }

    /// a followed by b.
    friend String operator+(const String& a, const String& b);

private:
    std::shared_ptr<const std::string> bytes;
};

/// Below 0, 0 or above 0 as `a` sorts before, with or behind `b`. ASCII letters match without case, all
/// other bytes exactly; InStr, Replace, ReplaceAll and Dictionary follow the same rule.
[[nodiscard]] int Compare(const String& a, const String& b) noexcept;

/// The 1-based position, in characters, of the first `find` at or behind position `start` (0 means 1);
/// 0 when there is none, or `find` is empty.
[[nodiscard]] std::int64_t InStr(const String& source, std::int64_t start, const String& find) noexcept;

/// The first `count` characters; all of them when there are fewer.
[[nodiscard]] String Left(const String& source, std::int64_t count);

/// From the 1-based character position `start` to the end; empty when `start` lies behind it.
[[nodiscard]] String Mid(const String& source, std::int64_t start);

/// The last `count` characters; the whole string when it has fewer.
[[nodiscard]] String Right(const String& source, std::int64_t count);

/// `source` with its first `old`, from the left, replaced by `fresh`.
[[nodiscard]] String Replace(const String& source, const String& old, const String& fresh);

/// `source` with every `old` replaced by `fresh`; what a replacement makes is not searched again.
[[nodiscard]] String ReplaceAll(const String& source, const String& old, const String& fresh);

/// Plain decimal digits, with "-" when negative. `format` must be empty; any other raises
/// UnsupportedOperationException.
[[nodiscard]] String Str(std::int64_t value, const String& format = {});

/// The longest decimal number at the start of the text, behind blanks; 0 when there is none. Never raises.
[[nodiscard]] double Val(const String& source) noexcept;

/// Truncated toward zero; the nearest end when out of range, 0 for what is no number.
[[nodiscard]] std::int64_t ToInteger(double value) noexcept;

} // namespace veltrane
