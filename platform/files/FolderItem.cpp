#include "platform/files/FolderItem.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/Links.h"

namespace veltrane {

namespace {

std::string CurrentFolder()
{
    std::error_code error;
    return std::filesystem::current_path(error).string();
}

std::string Home()
{
    if (const char* const home = std::getenv("HOME"); home != nullptr && home[0] == '/')
        return home;
    const passwd* const user = getpwuid(getuid());
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "";
}

bool IsName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".."
        && name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

} // namespace

Ref<FolderItem> FolderItem::FromPath(std::string_view path)
{
    if (path.empty())
        return nullptr;
    std::string absolute(path);
    if (!path.starts_with('/'))
        absolute = CurrentFolder() + "/" + absolute;
    while (absolute.size() > 1 && absolute.ends_with('/'))
        absolute.pop_back();
    return New<FolderItem>(std::move(absolute));
}

bool FolderItem::Exists() const
{
    struct stat found;
    if (stat(path.c_str(), &found) == 0)
        return true;
    return errno != ENOENT && errno != ENOTDIR && errno != ENAMETOOLONG;
}

String FolderItem::Name() const
{
    return path.size() == 1 ? String(path) : String(path.substr(path.rfind('/') + 1));
}

Ref<FolderItem> FolderItem::Parent() const
{
    return path.size() == 1 ? nullptr : FromPath(path.substr(0, path.rfind('/') + 1));
}

bool FolderItem::IsWriteable() const
{
    struct stat found;
    if (stat(path.c_str(), &found) != 0)
        return false;
    // Writing into a folder takes the right to walk through it besides.
    const int wanted = S_ISDIR(found.st_mode) ? W_OK | X_OK : W_OK;
    return faccessat(AT_FDCWD, path.c_str(), wanted, AT_EACCESS) == 0;
}

bool FolderItem::IsBehind(const FolderItem& other) const
{
    struct stat here;
    if (lstat(path.c_str(), &here) != 0)
        return false;
    std::string way = other.path;
    for (int followed = 0; followed <= kMostLinks && !way.empty(); ++followed) {
        struct stat step;
        if (lstat(way.c_str(), &step) != 0)
            return false;
        // A file with one name that is met under two is mounted at one of them.
        if (step.st_dev == here.st_dev && step.st_ino == here.st_ino)
            return followed > 0 || way == path || here.st_nlink == 1;
        way = LinkTarget(way);
    }
    return false;
}

Ref<FolderItem> FolderItem::Child(const String& name) const
{
    if (!IsName(name.Bytes()))
        return nullptr;
    const std::string folder = path.size() == 1 ? path : path + "/";
    return New<FolderItem>(folder + std::string(name.Bytes()));
}

Ref<FolderItem> SpecialFolder::Preferences()
{
    std::string folder;
    if (const char* const named = std::getenv("XDG_CONFIG_HOME"); named != nullptr && named[0] == '/')
        folder = named;
    else if (const std::string home = Home(); !home.empty())
        folder = home + "/.config";
    else
        return nullptr;
    // A folder that could not be made shows itself when a file in it is opened.
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    return FolderItem::FromPath(folder);
}

} // namespace veltrane
