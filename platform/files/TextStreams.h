#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/files/FolderItem.h"
#include "platform/values/Ref.h"
#include "platform/values/String.h"
#include "platform/values/TextEncoding.h"

namespace veltrane {

class FileReader;
class FileWriter;

/// Reads a text file line by line. LF, CR LF and CR end a line; a byte order mark at the beginning is
/// passed over.
class TextInputStream final : public Counted {
public:
    /// Raises NilObjectException for nil, IOException with the file's LastErrorCode when it cannot be
    /// opened. Never nil.
    [[nodiscard]] static Ref<TextInputStream> Open(const Ref<FolderItem>& file);
    ~TextInputStream() override;

    /// The encoding of the text that is read.
    void Encoding(const Ref<TextEncoding>& fresh) { encoding = fresh; }

    /// True when nothing is left to read. Raises nothing: a failing read shows itself in ReadLine. (Written
    /// so because the C library has a macro of the usual spelling.)
    [[nodiscard]] bool Eof() noexcept;

    /// The next line without its end. With nil the stream's Encoding applies.
    /// Raises IOException when reading fails and UseIOExceptions is true.
    [[nodiscard]] String ReadLine(const Ref<TextEncoding>& lineEncoding);

    void Close() noexcept;

    [[nodiscard]] std::int64_t LastErrorCode() const noexcept { return lastErrorCode; }
    void UseIOExceptions(bool yes) noexcept { useIOExceptions = yes; }

private:
    template<class T, class... Args>
    friend Ref<T> New(Args&&... args);
    explicit TextInputStream(std::unique_ptr<FileReader> reader);

    [[nodiscard]] static Ref<TextInputStream> TryOpen(FolderItem& file);
    [[nodiscard]] bool Fill() noexcept;
    void CheckForError() const;

    std::unique_ptr<FileReader> reader;
    std::vector<std::uint8_t> buffer;
    std::size_t next = 0; // first byte of `buffer` that was not handed out
    Ref<TextEncoding> encoding;
    std::int64_t lastErrorCode = 0;
    bool useIOExceptions = false;
};

/// Writes a text file. The file gets its new content whole at Close; a stream that is dropped without it
/// changes nothing. Where the file is a link, the file at its end is the one that is written.
class TextOutputStream final : public Counted {
public:
    /// Raises NilObjectException for nil, IOException with the file's LastErrorCode when it cannot be
    /// written. Never nil.
    [[nodiscard]] static Ref<TextOutputStream> Create(const Ref<FolderItem>& file);
    ~TextOutputStream() override;

    /// What ends a line; a line feed.
    [[nodiscard]] const String& Delimiter() const noexcept { return delimiter; }
    void Delimiter(const String& fresh) { delimiter = fresh; }

    /// Writes the text and a line end. Raises IOException when that fails and UseIOExceptions is true.
    void WriteLine(const String& text);

    /// Puts the file in its place. Raises IOException when that fails; the old content then stands.
    void Close();

    [[nodiscard]] std::int64_t LastErrorCode() const noexcept { return lastErrorCode; }
    void UseIOExceptions(bool yes) noexcept { useIOExceptions = yes; }

private:
    template<class T, class... Args>
    friend Ref<T> New(Args&&... args);
    explicit TextOutputStream(std::unique_ptr<FileWriter> writer);

    [[nodiscard]] static Ref<TextOutputStream> TryCreate(FolderItem& file);
    void CheckForError() const;

    std::unique_ptr<FileWriter> writer;
    String delimiter { "\n" };
    std::int64_t lastErrorCode = 0;
    bool useIOExceptions = false;
};

} // namespace veltrane
