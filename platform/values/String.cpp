#include "platform/values/String.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "platform/values/Exceptions.h"
#include "platform/values/Utf8.h"

namespace veltrane {

namespace {

constexpr std::size_t kNowhere = std::string_view::npos;

constexpr unsigned char Fold(char byte) noexcept
{
    const auto value = static_cast<unsigned char>(byte);
    return value >= 'A' && value <= 'Z' ? static_cast<unsigned char>(value + ('a' - 'A')) : value;
}

bool StartsWith(std::string_view text, std::string_view start) noexcept
{
    if (text.size() < start.size())
        return false;
    for (std::size_t i = 0; i < start.size(); ++i) {
        if (Fold(text[i]) != Fold(start[i]))
            return false;
    }
    return true;
}

// Byte offset of the first `find` that begins on a character at or behind `from`.
std::size_t FindFrom(std::string_view text, std::size_t from, std::string_view find) noexcept
{
    if (find.empty())
        return kNowhere;
    for (std::size_t at = from; at < text.size(); at += utf8::CharacterLength(text.substr(at))) {
        if (StartsWith(text.substr(at), find))
            return at;
    }
    return kNowhere;
}

std::size_t Clamped(std::int64_t count) noexcept
{
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

} // namespace

String::String(const char* text) : String(text != nullptr ? std::string_view(text) : std::string_view()) { }

String::String(std::string text)
    : bytes(text.empty() ? nullptr : std::make_shared<const std::string>(std::move(text)))
{
}

String::String(std::string_view text) : String(std::string(text)) { }

String operator+(const String& a, const String& b)
{
    if (a.Empty())
        return b;
    if (b.Empty())
        return a;
    std::string sum;
    sum.reserve(a.Bytes().size() + b.Bytes().size());
    return String(sum.append(a.Bytes()).append(b.Bytes()));
}

int Compare(const String& a, const String& b) noexcept
{
    const std::string_view left = a.Bytes();
    const std::string_view right = b.Bytes();
    for (std::size_t i = 0; i < left.size() && i < right.size(); ++i) {
        const int difference = Fold(left[i]) - Fold(right[i]);
        if (difference != 0)
            return difference;
    }
    return (left.size() > right.size()) - (left.size() < right.size());
}

std::int64_t InStr(const String& source, std::int64_t start, const String& find) noexcept
{
    const std::string_view text = source.Bytes();
    const std::size_t from = utf8::OffsetOf(text, start > 1 ? Clamped(start - 1) : 0);
    const std::size_t at = FindFrom(text, from, find.Bytes());
    return at == kNowhere ? 0 : static_cast<std::int64_t>(utf8::CharacterCount(text.substr(0, at))) + 1;
}

String Left(const String& source, std::int64_t count)
{
    const std::string_view text = source.Bytes();
    return String(text.substr(0, utf8::OffsetOf(text, Clamped(count))));
}

String Mid(const String& source, std::int64_t start)
{
    const std::string_view text = source.Bytes();
    return String(text.substr(utf8::OffsetOf(text, start > 1 ? Clamped(start - 1) : 0)));
}

String Right(const String& source, std::int64_t count)
{
    const std::string_view text = source.Bytes();
    const std::size_t total = utf8::CharacterCount(text);
    const std::size_t wanted = Clamped(count);
    return wanted >= total ? source : String(text.substr(utf8::OffsetOf(text, total - wanted)));
}

String Replace(const String& source, const String& old, const String& fresh)
{
    const std::string_view text = source.Bytes();
    const std::size_t at = FindFrom(text, 0, old.Bytes());
    if (at == kNowhere)
        return source;
    std::string result(text.substr(0, at));
    return String(result.append(fresh.Bytes()).append(text.substr(at + old.Bytes().size())));
}

String ReplaceAll(const String& source, const String& old, const String& fresh)
{
    const std::string_view text = source.Bytes();
    std::string result;
    std::size_t from = 0;
    for (std::size_t at; (at = FindFrom(text, from, old.Bytes())) != kNowhere; from = at + old.Bytes().size())
        result.append(text.substr(from, at - from)).append(fresh.Bytes());
    return from == 0 ? source : String(result.append(text.substr(from)));
}

String Str(std::int64_t value, const String& format)
{
    if (!format.Empty())
        throw UnsupportedOperationException("Format de nombre non pris en charge");
    return String(std::to_string(value));
}

double Val(const String& source) noexcept
{
    std::string_view text = source.Bytes();
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    // Words such as "inf" and "nan" are numbers to from_chars, but not to a person.
    const std::size_t digits = text.starts_with('-') ? 1 : 0;
    if (text.size() <= digits || (text[digits] != '.' && (text[digits] < '0' || text[digits] > '9')))
        return 0.0;
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc::result_out_of_range)
        return value;
    // from_chars leaves the value alone when it is out of range, and does not tell which end it left by.
    const double huge = std::numeric_limits<double>::infinity();
    const std::string_view number(text.data(), end);
    const bool tiny = number.find("e-") != kNowhere || number.find("E-") != kNowhere || number[digits] == '.';
    return tiny ? 0.0 : (digits == 1 ? -huge : huge);
}

std::int64_t ToInteger(double value) noexcept
{
    // 2^63 itself does not fit; the number below it that a double can hold does.
    constexpr double kEnd = 9223372036854775808.0;
    if (std::isnan(value))
        return 0;
    if (value >= kEnd)
        return std::numeric_limits<std::int64_t>::max();
    if (value < -kEnd)
        return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

} // namespace veltrane
