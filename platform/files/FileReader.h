#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "imaging/bits/Bytes.h"

namespace veltrane {

/// Reads a regular file from its beginning. The file is read, not mapped: another program that cuts it
/// off meanwhile must not bring this one down.
class FileReader {
public:
    /// Raises IOException when the file cannot be opened, is a folder, or is no regular file.
    explicit FileReader(const std::string& path);
    ~FileReader();
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;

    /// The size in bytes when the file was opened.
    [[nodiscard]] std::size_t Size() const noexcept { return size; }

    /// Reads up to `count` bytes; fewer only at the end. Raises IOException.
    [[nodiscard]] std::size_t Read(std::uint8_t* bytes, std::size_t count);

private:
    int file = -1;
    std::size_t size = 0;
};

/// The bytes of a whole file.
struct FileBytes {
    std::unique_ptr<std::uint8_t[]> memory;
    std::size_t size = 0;

    [[nodiscard]] imaging::Bytes View() const noexcept { return { memory.get(), size }; }
};

/// Reads the first `most` bytes of the file, or all of it when it is shorter.
/// Raises IOException, OutOfMemoryException.
[[nodiscard]] FileBytes ReadFile(const std::string& path, std::size_t most);

} // namespace veltrane
