#pragma once

#include <cstddef>
#include <string>

#include <sys/stat.h>
#include <sys/types.h>

namespace veltrane {

/// The system calls that writing a file takes, in one place, so that tests can have each of them fail.
/// Results are the system's: -1 and errno for a failure.
class FileCalls {
public:
    virtual ~FileCalls() = default;

    /// The calls of the system itself.
    [[nodiscard]] static FileCalls& System() noexcept;

    /// The calls that writers take when they are told no others: the system's, unless Replace gave some.
    [[nodiscard]] static FileCalls& Current() noexcept;

    /// Has all writers that are made from now on take these calls, which must outlive them; null brings the
    /// system's back.
    static void Replace(FileCalls* calls) noexcept;

    virtual int OpenFolder(const std::string& path);

    /// A file without a name in the folder; fails with EOPNOTSUPP where there is no way to name it later.
    virtual int OpenUnnamed(int folder);
    virtual int CreateNamed(int folder, const char* name);

    /// For reading, or for writing where only that is allowed.
    virtual int OpenExisting(int folder, const char* name);
    virtual int Lock(int file, bool wait);
    virtual int ChangeMode(int file, mode_t mode);
    virtual ssize_t Write(int file, const void* bytes, std::size_t count);
    virtual int Sync(int file);
    virtual int Duplicate(int file);
    virtual int Close(int file);
    virtual int Link(int file, int folder, const char* name);
    virtual int Rename(int folder, const char* from, const char* to);
    virtual int Remove(int folder, const char* name);
    virtual int Stat(int file, struct stat& found);
    virtual int StatName(int folder, const char* name, struct stat& found); ///< of a link: the link itself
    virtual int MayWrite(int folder, const char* name);
    virtual ssize_t ReadLink(const char* path, char* target, std::size_t size); ///< no NUL behind the target
};

} // namespace veltrane
