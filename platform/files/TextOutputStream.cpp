#include "platform/files/TextStreams.h"

#include "platform/files/FileWriter.h"
#include "platform/files/Links.h"
#include "platform/files/SystemError.h"
#include "platform/values/Exceptions.h"

namespace veltrane {

TextOutputStream::TextOutputStream(std::unique_ptr<FileWriter> writer) : writer(std::move(writer)) { }

TextOutputStream::~TextOutputStream() = default;

Ref<TextOutputStream> TextOutputStream::TryCreate(FolderItem& file)
{
    try {
        file.LastErrorCode(0);
        // People keep their settings elsewhere and link to them, and the link must stay one.
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
