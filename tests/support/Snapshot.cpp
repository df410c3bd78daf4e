#include "tests/support/Snapshot.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <sys/stat.h>

namespace veltrane::tests {

namespace {

std::string Content(const std::filesystem::path& path, mode_t mode)
{
    if (S_ISLNK(mode))
        return std::filesystem::read_symlink(path).string();
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

std::string About(const std::filesystem::path& path)
{
    struct stat found { };
    if (lstat(path.c_str(), &found) != 0)
        return "gone";
    std::ostringstream about;
    about << std::oct << found.st_mode;
    if (!S_ISDIR(found.st_mode))
        about << ' ' << found.st_ino << ' ' << found.st_mtim.tv_sec << ' ' << found.st_mtim.tv_nsec << ' '
              << Content(path, found.st_mode);
    return about.str();
}

} // namespace

Snapshot Look(const std::string& folder)
{
    Snapshot all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        all[std::filesystem::relative(entry.path(), folder).string()] = About(entry.path());
    return all;
}

Snapshot LookPastLeftOvers(const std::string& folder)
{
    Snapshot all = Look(folder);
    std::erase_if(all, [](const auto& item) { return item.first.find(".veltrane-") != std::string::npos; });
    return all;
}

} // namespace veltrane::tests
