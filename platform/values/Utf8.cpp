#include "platform/values/Utf8.h"

namespace veltrane::utf8 {

namespace {

struct Lead {
    unsigned char first, last; // lead bytes of this row
    unsigned char low, high; // range of the second byte
    std::size_t length;
};

// The second byte's range is what keeps out overlong forms, surrogates and values above U+10FFFF.
constexpr Lead kLeads[] = {
    { 0xC2, 0xDF, 0x80, 0xBF, 2 },
    { 0xE0, 0xE0, 0xA0, 0xBF, 3 },
    { 0xE1, 0xEC, 0x80, 0xBF, 3 },
    { 0xED, 0xED, 0x80, 0x9F, 3 },
    { 0xEE, 0xEF, 0x80, 0xBF, 3 },
    { 0xF0, 0xF0, 0x90, 0xBF, 4 },
    { 0xF1, 0xF3, 0x80, 0xBF, 4 },
    { 0xF4, 0xF4, 0x80, 0x8F, 4 },
};

bool Within(char byte, unsigned char low, unsigned char high) noexcept
{
    const auto value = static_cast<unsigned char>(byte);
    return low <= value && value <= high;
}

bool Follows(std::string_view text, const Lead& lead) noexcept
{
    if (text.size() < lead.length || !Within(text[1], lead.low, lead.high))
        return false;
    for (std::size_t i = 2; i < lead.length; ++i) {
        if (!Within(text[i], 0x80, 0xBF))
            return false;
    }
    return true;
}

} // namespace

std::size_t CharacterLength(std::string_view text) noexcept
{
    for (const Lead& lead : kLeads) {
        if (Within(text.front(), lead.first, lead.last))
            return Follows(text, lead) ? lead.length : 1;
    }
    return 1;
}

std::size_t CharacterCount(std::string_view text) noexcept
{
    std::size_t count = 0;
    for (; !text.empty(); text.remove_prefix(CharacterLength(text)))
        ++count;
    return count;
}

std::size_t OffsetOf(std::string_view text, std::size_t character) noexcept
{
    std::size_t offset = 0;
    for (; character > 0 && offset < text.size(); --character)
        offset += CharacterLength(text.substr(offset));
    return offset;
}

} // namespace veltrane::utf8
