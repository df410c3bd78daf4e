#include "platform/files/Originals.h"

#include <optional>

#include <sys/stat.h>

namespace veltrane {

namespace {

std::optional<std::pair<dev_t, ino_t>> EntryAt(const std::string& path)
{
    struct stat found { };
    if (lstat(path.c_str(), &found) != 0)
        return std::nullopt;
    return std::pair { found.st_dev, found.st_ino };
}

} // namespace

// A link counts as well as the file it leads to: replacing either would take something from the user.
void Originals::Add(Names& names, const std::string& path)
{
    if (const auto entry = EntryAt(path))
        names.insert_or_assign(*entry, path);
    struct stat file { };
    if (stat(path.c_str(), &file) == 0)
        names.insert_or_assign({ file.st_dev, file.st_ino }, path);
}

std::shared_ptr<Originals::Waiting> Originals::Await(std::vector<std::string> paths)
{
    std::erase_if(waiting, [](const std::weak_ptr<Waiting>& files) { return files.expired(); });
    auto files = std::make_shared<Waiting>(std::move(paths));
    waiting.push_back(files);
    return files;
}

void Originals::TakeIn(const std::string& path)
{
    Add(takenIn, path);
}

void Originals::Copied(const std::string& path)
{
    if (const auto entry = EntryAt(path))
        takenIn.erase(*entry);
}

std::string Originals::ReplacedAt(const std::string& path) const
{
    const auto file = EntryAt(path);
    if (!file)
        return {};
    if (const auto known = takenIn.find(*file); known != takenIn.end())
        return known->second;
    for (const std::weak_ptr<Waiting>& batch : waiting) {
        if (const std::shared_ptr<Waiting> files = batch.lock()) {
            if (std::string original = files->Find(path, *file); !original.empty())
                return original;
        }
    }
    return {};
}

// The disk is asked about the waiting files once. One that has been replaced since is still found by its
// path, and one whose inode another file has now is found no more.
std::string Originals::Waiting::Find(const std::string& path, const Identity& file)
{
    if (paths.contains(path))
        return path;
    if (!std::exchange(resolved, true)) {
        for (const std::string& waitingPath : paths)
            Add(names, waitingPath);
    }
    const auto known = names.find(file);
    if (known == names.end())
        return {};
    Names now;
    Add(now, known->second);
    return now.contains(file) ? known->second : std::string();
}

} // namespace veltrane
