#include "platform/files/Links.h"

#include <array>
#include <cerrno>
#include <string_view>

#include "platform/files/FileCalls.h"
#include "platform/files/SystemError.h"

namespace veltrane {

namespace {

constexpr std::size_t kLongestTarget = 4096; // the kernel's PATH_MAX

} // namespace

std::string LinkTarget(const std::string& path)
{
    std::array<char, kLongestTarget> target {};
    const ssize_t length = FileCalls::Current().ReadLink(path.c_str(), target.data(), target.size());
    if (length < 0 && (errno == EINVAL || errno == ENOENT)) // no link, or nothing there yet
        return {};
    if (length < 0)
        RaiseIO("lien illisible", errno);
    const std::string_view link(target.data(), static_cast<std::size_t>(length));
    return link.starts_with('/') ? std::string(link) : path.substr(0, path.rfind('/') + 1).append(link);
}

std::string EndOfLinks(std::string path)
{
    for (int followed = 0; followed < kMostLinks; ++followed) {
        std::string next = LinkTarget(path);
        if (next.empty())
            return path;
        path = std::move(next);
    }
    RaiseIO("lien illisible", ELOOP);
}

} // namespace veltrane
