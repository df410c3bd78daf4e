#include "platform/files/UriList.h"

#include <array>
#include <charconv>

#include <unistd.h>

#include "platform/values/String.h"

namespace veltrane {

namespace {

bool IsThisHost(std::string_view host)
{
    std::array<char, 256> own {};
    if (gethostname(own.data(), own.size() - 1) != 0)
        return false;
    return Compare(String(host), own.data()) == 0;
}

// Letters, digits and marks that mean nothing in an address, and the slash between names.
bool IsPlain(unsigned char byte)
{
    constexpr std::string_view kMarks = "-._~/";
    const unsigned char letter = byte | 0x20;
    return (letter >= 'a' && letter <= 'z') || (byte >= '0' && byte <= '9')
        || kMarks.find(static_cast<char>(byte)) != std::string_view::npos;
}

std::optional<std::string> Unescaped(std::string_view text)
{
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned char byte = static_cast<unsigned char>(text[i]);
        if (byte == '%') {
            const char* const digits = text.data() + i + 1;
            if (text.size() - i < 3 || std::from_chars(digits, digits + 2, byte, 16).ptr != digits + 2)
                return std::nullopt;
            i += 2;
        }
        if (byte == 0)
            return std::nullopt;
        plain += static_cast<char>(byte);
    }
    return plain;
}

} // namespace

std::string FileAddress(std::string_view path)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string address = "file://";
    for (const char sign : path) {
        const auto byte = static_cast<unsigned char>(sign);
        if (IsPlain(byte))
            address += sign;
        else
            address.append({ '%', kDigits[byte >> 4], kDigits[byte & 15] });
    }
    return address;
}

std::optional<std::string> LocalPath(std::string_view address)
{
    constexpr std::string_view kScheme = "file:";
    if (Compare(String(address.substr(0, kScheme.size())), String(kScheme)) != 0)
        return std::nullopt;
    address.remove_prefix(kScheme.size());
    if (address.starts_with("//")) {
        address.remove_prefix(2);
        const std::string_view host = address.substr(0, address.find('/'));
        if (!host.empty() && Compare(String(host), "localhost") != 0 && !IsThisHost(host))
            return std::nullopt;
        address.remove_prefix(host.size());
    }
    if (!address.starts_with('/'))
        return std::nullopt;
    // A query or fragment is no part of the path; in a name these signs come escaped.
    return Unescaped(address.substr(0, address.find_first_of("?#")));
}

} // namespace veltrane
