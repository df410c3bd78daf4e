#include "platform/files/FileCalls.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace veltrane {

namespace {

constexpr mode_t kUsersChoice = 0666; // narrowed by the umask

FileCalls* replacement = nullptr;

std::string DescriptorPath(int file)
{
    return "/proc/self/fd/" + std::to_string(file);
}

} // namespace

FileCalls& FileCalls::System() noexcept
{
    static FileCalls calls;
    return calls;
}

FileCalls& FileCalls::Current() noexcept
{
    return replacement != nullptr ? *replacement : System();
}

void FileCalls::Replace(FileCalls* calls) noexcept
{
    replacement = calls;
}

int FileCalls::OpenFolder(const std::string& path)
{
    return open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

int FileCalls::OpenUnnamed(int folder)
{
    // The descriptor's path under /proc is the only way to name the file later without privileges.
    if (access(DescriptorPath(folder).c_str(), F_OK) != 0) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return openat(folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, kUsersChoice);
}

int FileCalls::CreateNamed(int folder, const char* name)
{
    return openat(folder, name, O_CREAT | O_EXCL | O_NOFOLLOW | O_WRONLY | O_CLOEXEC, kUsersChoice);
}

int FileCalls::OpenExisting(int folder, const char* name)
{
    constexpr int kCareful = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    const int file = openat(folder, name, O_RDONLY | kCareful);
    return file < 0 && errno == EACCES ? openat(folder, name, O_WRONLY | kCareful) : file;
}

int FileCalls::Lock(int file, bool wait)
{
    return flock(file, wait ? LOCK_EX : LOCK_EX | LOCK_NB);
}

int FileCalls::ChangeMode(int file, mode_t mode)
{
    return fchmod(file, mode);
}

ssize_t FileCalls::Write(int file, const void* bytes, std::size_t count)
{
    return write(file, bytes, count);
}

int FileCalls::Sync(int file)
{
    return fsync(file);
}

int FileCalls::Duplicate(int file)
{
    return fcntl(file, F_DUPFD_CLOEXEC, 0);
}

int FileCalls::Close(int file)
{
    return close(file);
}

int FileCalls::Link(int file, int folder, const char* name)
{
    return linkat(AT_FDCWD, DescriptorPath(file).c_str(), folder, name, AT_SYMLINK_FOLLOW);
}

int FileCalls::Rename(int folder, const char* from, const char* to)
{
    return renameat(folder, from, folder, to);
}

int FileCalls::Remove(int folder, const char* name)
{
    return unlinkat(folder, name, 0);
}

int FileCalls::Stat(int file, struct stat& found)
{
    return fstat(file, &found);
}

int FileCalls::StatName(int folder, const char* name, struct stat& found)
{
    return fstatat(folder, name, &found, AT_SYMLINK_NOFOLLOW);
}

int FileCalls::MayWrite(int folder, const char* name)
{
    return faccessat(folder, name, W_OK, AT_EACCESS);
}

ssize_t FileCalls::ReadLink(const char* path, char* target, std::size_t size)
{
    return readlink(path, target, size);
}

} // namespace veltrane
