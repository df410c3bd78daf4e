#include "platform/TextStreams.h"

#include <array>
#include <cerrno>

#include <unistd.h>

#include "platform/Exceptions.h"
#include "platform/FileWriter.h"
#include "platform/SystemError.h"

namespace veltrane {

namespace {

constexpr int kMostLinks = 40; // as the kernel counts them

// Where a chain of links ends, whether or not something lies there: people keep their settings elsewhere
// and link to them, and the link must stay one.
std::string EndOfLinks(std::string path)
{
    for (int followed = 0; followed < kMostLinks; ++followed) {
        std::array<char, 4096> target {};
        const ssize_t length = readlink(path.c_str(), target.data(), target.size());
        if (length < 0)
            return path;
        const std::string_view link(target.data(), static_cast<std::size_t>(length));
        path = link.starts_with('/') ? std::string(link) : path.substr(0, path.rfind('/') + 1).append(link);
    }
    RaiseIO("écriture impossible", ELOOP);
}

} // namespace

TextOutputStream::TextOutputStream(std::unique_ptr<FileWriter> writer) : writer(std::move(writer)) { }

TextOutputStream::~TextOutputStream() = default;

Ref<TextOutputStream> TextOutputStream::TryCreate(FolderItem& file)
{
    try {
        file.LastErrorCode(0);
        return New<TextOutputStream>(std::make_unique<FileWriter>(EndOfLinks(file.Path())));
    } catch (const IOException& failure) {
        file.LastErrorCode(failure.ErrorNumber());
        return nullptr;
    }
}

Ref<TextOutputStream> TextOutputStream::Create(const Ref<FolderItem>& file)
{
    if (!file)
        throw NilObjectException();
    const Ref<TextOutputStream> stream = TryCreate(*file);
    if (!stream)
        RaiseIO("impossible d'écrire « " + file->Name() + " »", static_cast<int>(file->LastErrorCode()));
    stream->UseIOExceptions(true);
    return stream;
}

void TextOutputStream::WriteLine(const String& text)
{
    const String line = text + delimiter;
    const std::string_view bytes = line.Bytes();
    try {
        writer->Write({ reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size() });
    } catch (const IOException& failure) {
        lastErrorCode = failure.ErrorNumber();
    }
    CheckForError();
}

void TextOutputStream::Close()
{
    if (const auto finished = std::move(writer); finished && lastErrorCode == 0)
        finished->Commit();
}

void TextOutputStream::CheckForError() const
{
    if (useIOExceptions && lastErrorCode != 0)
        RaiseIO("écriture impossible", static_cast<int>(lastErrorCode));
}

} // namespace veltrane
