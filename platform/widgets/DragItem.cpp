#include "platform/widgets/DragItem.h"

#include <optional>

#include <sys/stat.h>

#include "platform/files/FileTypes.h"
#include "platform/files/UriList.h"
#include "platform/run/Runtime.h"

namespace veltrane {

namespace {

enum class Kind { Missing, File, Other };

Kind KindOf(const std::string& path)
{
    struct stat found { };
    if (stat(path.c_str(), &found) != 0)
        return Kind::Missing;
    return S_ISREG(found.st_mode) ? Kind::File : Kind::Other;
}

bool NameFits(const std::string& path, const String& types)
{
    return filetypes::FitsByName(types, FolderItem::FromPath(path)->Name());
}

} // namespace

DragItem::DragItem(std::vector<std::string> addresses, const String& acceptedTypes)
    : addresses(std::move(addresses)), acceptedTypes(acceptedTypes)
{
}

bool DragItem::HoldsAnyOf(const std::vector<std::string>& addresses, const String& acceptedTypes)
{
    if (acceptedTypes.Empty())
        return false;
    std::vector<std::string> unfit;
    for (const std::string& address : addresses) {
        const std::optional<std::string> path = LocalPath(address);
        if (!path || KindOf(*path) == Kind::Other)
            continue;
        if (NameFits(*path, acceptedTypes))
            return true;
        unfit.push_back(*path);
    }
    for (const std::string& path : unfit) {
        if (filetypes::FitsByContent(path))
            return true;
    }
    return false;
}

bool DragItem::FolderItemAvailable() const
{
    if (current >= addresses.size())
        return false;
    const std::optional<std::string> path = LocalPath(addresses[current]);
    if (!path || KindOf(*path) == Kind::Other)
        return false;
    return NameFits(*path, acceptedTypes) || filetypes::FitsByContent(*path);
}

Ref<veltrane::FolderItem> DragItem::FolderItem() const
{
    if (!FolderItemAvailable())
        return nullptr;
    const auto file = veltrane::FolderItem::FromPath(*LocalPath(addresses[current]));
    Runtime::Current().TakeInHand(file, ItemsLeft());
    return file;
}

std::vector<std::string> DragItem::LocalPaths() const
{
    std::vector<std::string> paths;
    for (const std::string& address : addresses) {
        if (std::optional<std::string> path = LocalPath(address))
            paths.push_back(std::move(*path));
    }
    return paths;
}

bool DragItem::NextItem()
{
    if (current < addresses.size())
        ++current;
    return current < addresses.size();
}

std::size_t DragItem::ItemsLeft() const noexcept
{
    return current < addresses.size() ? addresses.size() - current - 1 : 0;
}

} // namespace veltrane
