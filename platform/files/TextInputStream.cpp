#include "platform/files/TextStreams.h"

#include <algorithm>
#include <cerrno>
#include <new>

#include "platform/files/FileReader.h"
#include "platform/files/SystemError.h"
#include "platform/values/Exceptions.h"

namespace veltrane {

namespace {

constexpr std::size_t kBlock = 64 * 1024;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

} // namespace

TextInputStream::TextInputStream(std::unique_ptr<FileReader> reader) : reader(std::move(reader))
{
    while (buffer.size() < kByteOrderMark.size() && Fill()) { }
    const std::string_view start(reinterpret_cast<const char*>(buffer.data()), buffer.size());
    if (start.starts_with(kByteOrderMark))
        next = kByteOrderMark.size();
}

TextInputStream::~TextInputStream() = default;

Ref<TextInputStream> TextInputStream::TryOpen(FolderItem& file)
{
    try {
        file.LastErrorCode(0);
        return New<TextInputStream>(std::make_unique<FileReader>(file.Path()));
    } catch (const IOException& failure) {
        file.LastErrorCode(failure.ErrorNumber());
        return nullptr;
    }
}

Ref<TextInputStream> TextInputStream::Open(const Ref<FolderItem>& file)
{
    if (!file)
        throw NilObjectException();
    const Ref<TextInputStream> stream = TryOpen(*file);
    if (!stream)
        RaiseIO("impossible de lire « " + file->Name() + " »", static_cast<int>(file->LastErrorCode()));
    stream->UseIOExceptions(true);
    return stream;
}

// Adds a block to the buffer; false at the end of the file or when reading fails.
bool TextInputStream::Fill() noexcept
{
    if (!reader || lastErrorCode != 0)
        return false;
    try {
        buffer.erase(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(next));
        next = 0;
        const std::size_t held = buffer.size();
        buffer.resize(held + kBlock);
        buffer.resize(held + reader->Read(buffer.data() + held, kBlock));
        return buffer.size() > held;
    } catch (const IOException& failure) {
        lastErrorCode = failure.ErrorNumber();
    } catch (const std::bad_alloc&) {
        lastErrorCode = ENOMEM;
    }
    return false;
}

bool TextInputStream::Eof() noexcept
{
    return next == buffer.size() && !Fill() && lastErrorCode == 0;
}

String TextInputStream::ReadLine(const Ref<TextEncoding>& lineEncoding)
{
    const auto isEnd = [](std::uint8_t byte) { return byte == '\n' || byte == '\r'; };
    std::string line;
    bool ended = false;
    while (!ended && (next < buffer.size() || Fill())) {
        const auto from = buffer.begin() + static_cast<std::ptrdiff_t>(next);
        const auto end = std::find_if(from, buffer.end(), isEnd);
        line.append(from, end);
        ended = end != buffer.end();
        const bool carriageReturn = ended && *end == '\r';
        next = static_cast<std::size_t>(end - buffer.begin()) + (ended ? 1 : 0);
        // The line feed behind a carriage return may lie in the next block.
        if (carriageReturn && (next < buffer.size() || Fill()) && buffer[next] == '\n')
            ++next;
    }
    CheckForError();
    return lineEncoding || encoding ? ConvertEncoding(String(line), lineEncoding ? lineEncoding : encoding)
                                    : String(line);
}

void TextInputStream::Close() noexcept
{
    reader.reset();
    buffer.clear();
    next = 0;
}

void TextInputStream::CheckForError() const
{
    if (useIOExceptions && lastErrorCode != 0)
        RaiseIO("lecture impossible", static_cast<int>(lastErrorCode));
}

} // namespace veltrane
