#include "platform/files/FileReader.h"

#include <algorithm>
#include <cerrno>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/SystemError.h"
#include "platform/values/Exceptions.h"

namespace veltrane {

namespace {

constexpr const char* kRefused = "lecture impossible";

bool IsRegular(const std::string& path)
{
    struct stat found { };
    return stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode);
}

/// The descriptor of a file on which another program, such as a file server, holds a lease: the system
/// asks for it back, and waits a limited time. Negative when it cannot be opened.
int OpenLeased(const std::string& path)
{
    int file = -1;
    do {
        file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    } while (file < 0 && errno == EINTR);
    return file;
}

int OpenToRead(const std::string& path)
{
    // Without O_NONBLOCK a named pipe would hold the program until somebody writes to it.
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const bool leased = file < 0 && errno == EWOULDBLOCK && IsRegular(path);
    return leased ? OpenLeased(path) : file;
}

} // namespace

FileReader::FileReader(const std::string& path) : file(OpenToRead(path))
{
    if (file < 0)
        RaiseIO(kRefused, errno);
    struct stat found { };
    int error = fstat(file, &found) != 0 ? errno : 0;
    if (error == 0 && !S_ISREG(found.st_mode))
        error = S_ISDIR(found.st_mode) ? EISDIR : EINVAL;
    if (error != 0) {
        close(file);
        RaiseIO(kRefused, error);
    }
    size = static_cast<std::size_t>(found.st_size);
}

FileReader::~FileReader()
{
    close(file);
}

std::size_t FileReader::Read(std::uint8_t* bytes, std::size_t count)
{
    std::size_t taken = 0;
    while (taken < count) {
        const ssize_t got = read(file, bytes + taken, count - taken);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            RaiseIO(kRefused, errno);
        if (got == 0)
            break;
        taken += static_cast<std::size_t>(got);
    }
    return taken;
}

FileBytes ReadFile(const std::string& path, std::size_t most)
{
    FileReader reader(path);
    FileBytes bytes;
    const std::size_t wanted = std::min(reader.Size(), most);
    bytes.memory.reset(new (std::nothrow) std::uint8_t[std::max<std::size_t>(wanted, 1)]);
    if (!bytes.memory)
        throw OutOfMemoryException("mémoire insuffisante pour lire ce fichier");
    bytes.size = reader.Read(bytes.memory.get(), wanted);
    return bytes;
}

} // namespace veltrane
