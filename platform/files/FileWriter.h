#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "imaging/bits/Sink.h"
#include "platform/files/FileCalls.h"
#include "platform/values/String.h"

namespace veltrane {

/// Writes a file so that it appears whole or not at all.
///
/// The bytes go to a file without a name in the target's folder; Commit gives it a short name of a fixed
/// pattern (".veltrane-0.tmp") and renames it onto the target. Where the file system knows no unnamed files
/// it has that name from the start. Until the rename the old file is untouched; whatever fails, and
/// a writer destroyed without Commit, leaves nothing behind. A name left by a process that was killed is
/// removed by the next writer in that folder: a living maker holds a lock on its file.
///
/// An old file keeps its permission bits; one that the user may not write is not replaced. A link at the
/// target is replaced as a link: what it points to does not change.
class FileWriter final : public imaging::Sink {
public:
    /// Opens the writer for the file at the absolute `path`. Raises IOException when it cannot be written:
    /// no such folder, no permission, a folder or device in its place, a name too long.
    explicit FileWriter(const std::string& path, FileCalls& calls = FileCalls::Current());
    ~FileWriter() override;
    FileWriter(const FileWriter&) = delete;
    FileWriter& operator=(const FileWriter&) = delete;

    /// Raises IOException; the writer is then of no further use.
    void Write(imaging::Bytes bytes) override;

    /// Puts the file in its place, all bytes on the disk. Raises IOException; the old file then stands as
    /// it was.
    void Commit();

private:
    class Descriptor {
    public:
        explicit Descriptor(FileCalls& calls) noexcept : calls(calls) { }
        ~Descriptor() { Reset(-1); }
        Descriptor(const Descriptor&) = delete;
        Descriptor& operator=(const Descriptor&) = delete;
        void Reset(int fresh) noexcept;
        [[nodiscard]] int Get() const noexcept { return number; }

    private:
        FileCalls& calls;
        int number = -1;
    };

    void ExamineTarget();
    void SweepLeftOvers() noexcept;
    void SweepSlot(const char* name) noexcept;
    void OpenTemporary();
    void OpenNamed();
    [[nodiscard]] bool ClaimNamed(const char* name);
    void Flush();
    void WriteAll(const std::uint8_t* bytes, std::size_t count);
    void GiveName();
    void CheckClose();
    [[noreturn]] void Fail() const;

    FileCalls& calls;
    std::string folderPath, targetName;
    std::optional<mode_t> oldMode; ///< of the file that will be replaced
    Descriptor folder, file;
    const char* temporaryName = nullptr; ///< while there is one on the disk
    std::vector<std::uint8_t> buffer;
};

} // namespace veltrane
