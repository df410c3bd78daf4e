#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/values/Ref.h"
#include "platform/values/String.h"

namespace veltrane {

/// A handle on one path of the file system, which need not exist; holds no open file. Paths are bytes: any
/// name that the disk holds.
class FolderItem final : public Counted {
public:
    /// The item at `path`; a relative one is taken from the folder that is current now. Nil for an empty
    /// path.
    [[nodiscard]] static Ref<FolderItem> FromPath(std::string_view path);

    /// True when something lies at the path now, a link being followed. Also true when the system refuses
    /// to say: then opening tells why.
    [[nodiscard]] bool Exists() const;

    /// Last component of the path, extension included; "/" for the root.
    [[nodiscard]] String Name() const;

    /// The folder that holds the item; nil for the root.
    [[nodiscard]] Ref<FolderItem> Parent() const;

    /// True when the item can be written now; on a folder, when files can be written into it. Asked of the
    /// system, so that permissions and read-only mounts both count.
    [[nodiscard]] bool IsWriteable() const;

    /// True when `other` leads here, over links or a mount, or is the same path: a new file in this one's
    /// place would be what `other` gives from then on. A second name of one file (a hard link) does not
    /// lead here. Raises IOException when a link cannot be read.
    [[nodiscard]] bool IsBehind(const FolderItem& other) const;

    /// The item of that name inside this folder, whether or not it exists; nil for what is no name: empty,
    /// ".", "..", or with a "/" or NUL in it.
    [[nodiscard]] Ref<FolderItem> Child(const String& name) const;

    /// The absolute path, for the system's calls.
    [[nodiscard]] const std::string& Path() const noexcept { return path; }

    /// The error number of the last stream that could not be opened on this item; 0 for none.
    [[nodiscard]] std::int64_t LastErrorCode() const noexcept { return lastErrorCode; }
    void LastErrorCode(std::int64_t code) noexcept { lastErrorCode = code; }

private:
    template<class T, class... Args>
    friend Ref<T> New(Args&&... args);
    explicit FolderItem(std::string path) noexcept : path(std::move(path)) { }

    std::string path; // absolute; no "/" at its end but for the root
    std::int64_t lastErrorCode = 0;
};

/// Folders that the desktop knows by their use.
struct SpecialFolder {
    /// The user's folder for settings: $XDG_CONFIG_HOME when it is an absolute path, else ~/.config; made
    /// if missing. Nil when there is no home, or it cannot be made.
    /// Source: XDG Base Directory Specification 0.8.
    [[nodiscard]] static Ref<FolderItem> Preferences();
};

} // namespace veltrane
