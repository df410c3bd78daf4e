#pragma once

#include <list>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace veltrane {

/// The files that a run works from: those that it has taken in, and those that wait for their turn in a drop
/// or among the documents. No copy may take the place of one of them. A file is known by its device and
/// inode, so that other names of it, links and mounts count as well.
class Originals {
public:
    /// Keeps files among the originals for as long as it lives.
    class Waiting;

    /// Adds files that wait, by their absolute paths. They cost nothing until a copy meets an existing file.
    [[nodiscard]] std::shared_ptr<Waiting> Await(std::vector<std::string> paths);

    /// Adds a file that is taken in, for the rest of the run.
    void TakeIn(const std::string& path);

    /// Takes note that a copy has been written at `path`: that file is no original, even if the disk has
    /// given it the inode of one that has been deleted.
    void Copied(const std::string& path);

    /// The path of the original that a new file at `path` would replace; empty when there is none.
    [[nodiscard]] std::string ReplacedAt(const std::string& path) const;

private:
    using Identity = std::pair<dev_t, ino_t>;
    using Names = std::map<Identity, std::string>; ///< the path of each

    static void Add(Names& names, const std::string& path);

    Names takenIn;
    std::list<std::weak_ptr<Waiting>> waiting;
};

class Originals::Waiting {
public:
    explicit Waiting(std::vector<std::string> files) : paths(files.begin(), files.end()) { }

private:
    friend class Originals;

    [[nodiscard]] std::string Find(const std::string& path, const Identity& file);

    std::unordered_set<std::string> paths;
    Names names;
    bool resolved = false;
};

} // namespace veltrane
