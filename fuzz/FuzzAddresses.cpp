// The reader of dropped addresses, on any bytes: as a list of addresses, and as a path that is escaped and
// must come back.

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/files/UriList.h"

using namespace veltrane;

namespace {

std::string Escaped(std::string_view path)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        text += { '%', kDigits[byte >> 4], kDigits[byte & 15] };
    }
    return text;
}

void ReadList(std::string_view list)
{
    while (!list.empty()) {
        const std::string_view address = list.substr(0, list.find('\n'));
        list.remove_prefix(std::min(address.size() + 1, list.size()));
        const auto path = LocalPath(address);
        if (path && (!path->starts_with('/') || path->find('\0') != std::string::npos))
            __builtin_trap(); // what the system would take for another file
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    ReadList(text);
    const std::string path = "/" + std::string(text);
    if (text.find('\0') == std::string_view::npos && LocalPath("file:///" + Escaped(text)) != path)
        __builtin_trap();
    return 0;
}
