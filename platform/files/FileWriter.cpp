#include "platform/files/FileWriter.h"

#include <cerrno>
#include <utility>

#include <unistd.h>

#include "platform/files/SystemError.h"

namespace veltrane {

namespace {

constexpr std::size_t kBufferSize = 256 * 1024;

// One is enough for a program that saves one file after the other; the others serve further windows that
// save into the same folder at the same moment. Few and fixed, so that looking for left-overs costs a few
// look-ups and no walk through the folder.
constexpr std::array kTemporaryNames = { ".veltrane-0.tmp", ".veltrane-1.tmp", ".veltrane-2.tmp",
    ".veltrane-3.tmp", ".veltrane-4.tmp", ".veltrane-5.tmp", ".veltrane-6.tmp", ".veltrane-7.tmp" };

bool HasNoUnnamedFiles(int error) noexcept
{
    // Kernels and file systems that do not know O_TMPFILE answer in these ways.
    return error == EOPNOTSUPP || error == EISDIR || error == EINVAL || error == ENOENT;
}

} // namespace

void FileWriter::Descriptor::Reset(int fresh) noexcept
{
    if (const int old = std::exchange(number, fresh); old >= 0)
        calls.Close(old);
}

FileWriter::FileWriter(const std::string& path, FileCalls& calls)
    : calls(calls)
    , folderPath(path.substr(0, path.rfind('/') + 1))
    , targetName(path.substr(path.rfind('/') + 1))
    , folder(calls)
    , file(calls)
{
    folder.Reset(calls.OpenFolder(folderPath));
    if (folder.Get() < 0)
        Fail();
    ExamineTarget();
    SweepLeftOvers();
    buffer.reserve(kBufferSize); // while there is nothing yet that a failure could leave behind
    OpenTemporary();
    if (oldMode && calls.ChangeMode(file.Get(), *oldMode) != 0) {
        const int error = errno;
        if (temporaryName != nullptr)
            calls.Remove(folder.Get(), std::exchange(temporaryName, nullptr));
        errno = error;
        Fail();
    }
}

FileWriter::~FileWriter()
{
    if (temporaryName != nullptr)
        calls.Remove(folder.Get(), temporaryName);
}

void FileWriter::ExamineTarget()
{
    struct stat found { };
    if (calls.StatName(folder.Get(), targetName.c_str(), found) != 0) {
        if (errno != ENOENT)
            Fail();
        return;
    }
    if (S_ISLNK(found.st_mode))
        return;
    if (!S_ISREG(found.st_mode)) {
        errno = S_ISDIR(found.st_mode) ? EISDIR : EINVAL;
        Fail();
    }
    if (calls.MayWrite(folder.Get(), targetName.c_str()) != 0)
        Fail();
    oldMode = found.st_mode & 07777;
}

void FileWriter::SweepLeftOvers() noexcept
{
    for (const char* const name : kTemporaryNames)
        SweepSlot(name);
}

void FileWriter::SweepSlot(const char* name) noexcept
{
    Descriptor left(calls);
    left.Reset(calls.OpenExisting(folder.Get(), name));
    if (left.Get() < 0 || calls.Lock(left.Get(), false) != 0)
        return;
    // Between opening and locking the name may have passed to a living maker's file.
    struct stat opened {
    }, named {};
    const bool same = calls.Stat(left.Get(), opened) == 0 && calls.StatName(folder.Get(), name, named) == 0
        && opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
    if (same && S_ISREG(opened.st_mode) && opened.st_uid == geteuid())
        calls.Remove(folder.Get(), name);
}

void FileWriter::OpenTemporary()
{
    file.Reset(calls.OpenUnnamed(folder.Get()));
    if (file.Get() < 0) {
        if (!HasNoUnnamedFiles(errno))
            Fail();
        OpenNamed();
        return;
    }
    // Locked before it gets a name; a file system without locks only loses the sweeping of left-overs.
    calls.Lock(file.Get(), true);
}

void FileWriter::OpenNamed()
{
    for (const char* const name : kTemporaryNames) {
        // A sweeper may take the file between its making and its lock; the second try has the name anew.
        if (ClaimNamed(name) || (errno == ENOENT && ClaimNamed(name)))
            return;
        if (errno != EEXIST)
            Fail();
    }
    errno = EBUSY;
    Fail();
}

bool FileWriter::ClaimNamed(const char* name)
{
    file.Reset(calls.CreateNamed(folder.Get(), name));
    if (file.Get() < 0)
        return false;
    calls.Lock(file.Get(), true);
    struct stat made { };
    if (calls.Stat(file.Get(), made) == 0 && made.st_nlink == 0) {
        errno = ENOENT;
        return false;
    }
    temporaryName = name;
    return true;
}

void FileWriter::Write(imaging::Bytes bytes)
{
    if (buffer.size() + bytes.size() > kBufferSize)
        Flush();
    if (bytes.size() >= kBufferSize)
        WriteAll(bytes.data(), bytes.size());
    else
        buffer.insert(buffer.end(), bytes.begin(), bytes.end());
}

void FileWriter::Flush()
{
    WriteAll(buffer.data(), buffer.size());
    buffer.clear();
}

void FileWriter::WriteAll(const std::uint8_t* bytes, std::size_t count)
{
    while (count > 0) {
        const ssize_t written = calls.Write(file.Get(), bytes, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written == 0)
            errno = EIO;
        if (written <= 0)
            Fail();
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
}

void FileWriter::Commit()
{
    Flush();
    // Without it a crash of the machine could leave the new name on a file without its bytes. Some file
    // systems have nothing to sync and say so.
    if (calls.Sync(file.Get()) != 0 && errno != EINVAL && errno != EOPNOTSUPP)
        Fail();
    if (temporaryName == nullptr)
        GiveName();
    CheckClose();
    if (calls.Rename(folder.Get(), temporaryName, targetName.c_str()) != 0)
        Fail();
    temporaryName = nullptr;
}

void FileWriter::GiveName()
{
    for (const char* const name : kTemporaryNames) {
        if (calls.Link(file.Get(), folder.Get(), name) == 0) {
            temporaryName = name;
            return;
        }
        if (errno != EEXIST)
            Fail();
    }
    errno = EBUSY;
    Fail();
}

// File systems of the network tell late failures when a descriptor closes. A second descriptor of the same
// file is closed for it, because the first one holds the lock until the rename is done.
void FileWriter::CheckClose()
{
    const int second = calls.Duplicate(file.Get());
    if (second < 0 || calls.Close(second) != 0)
        Fail();
}

void FileWriter::Fail() const
{
    const int error = errno;
    RaiseIO("impossible d'écrire « " + String(targetName) + " »", error);
}

} // namespace veltrane
