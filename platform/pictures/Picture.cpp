#include "platform/pictures/Picture.h"

#include "imaging/Codec.h"
#include "platform/files/FileReader.h"
#include "platform/files/FileWriter.h"
#include "platform/pictures/Faults.h"
#include "platform/pictures/PictureGraphics.h"

namespace veltrane {

namespace {

bool InRange(std::int64_t side)
{
    return side >= 1 && side <= imaging::Limits::kLargestSide;
}

imaging::Bitmap Blank(std::int64_t width, std::int64_t height)
{
    if (!InRange(height) || !InRange(width))
        throw imaging::Fault(imaging::Fault::SideOutOfRange);
    return imaging::Bitmap::Transparent(static_cast<int>(width), static_cast<int>(height));
}

imaging::Bitmap Decode(const std::string& path)
{
    const imaging::Limits limits = imaging::Limits::OfThisMachine();
    const FileBytes file = ReadFile(path, static_cast<std::size_t>(limits.maxBytes));
    const imaging::Codec* const codec = imaging::Find(file.View());
    if (codec == nullptr)
        throw UnsupportedFormatException(file.size == 0 ? "fichier vide" : "format non reconnu");
    return codec->decode(file.View(), limits);
}

const imaging::Codec* Encoder(std::int64_t format)
{
    const std::string_view name = format == FormatCodePNG ? "PNG" : format == FormatCodeJPEG ? "JPEG" : "";
    for (const imaging::Codec* codec : imaging::All()) {
        if (codec->name == name && codec->encode != nullptr)
            return codec;
    }
    throw UnsupportedOperationException("format d'enregistrement inconnu");
}

// What the user reads when memory runs out while that format is made.
const char* NoMemoryToEncode(std::int64_t format)
{
    return format == FormatCodePNG ? "mémoire insuffisante pour écrire cette image"
                                   : "mémoire insuffisante pour cette image";
}

} // namespace

Picture::Picture(std::int64_t width, std::int64_t height)
    : pixels(WithPixels([=] { return Blank(width, height); }))
{
}

Ref<Picture> Picture::Open(const Ref<FolderItem>& file)
{
    if (!file)
        throw NilObjectException();
    return WithPixels([&] { return New<Picture>(Decode(file->Path())); });
}

Ref<veltrane::Graphics> Picture::Graphics()
{
    return New<PictureGraphics>(Ref<Picture>(this));
}

void Picture::Save(const Ref<FolderItem>& file, std::int64_t format, std::int64_t quality) const
{
    if (quality != DefaultQuality && (quality < 0 || quality > 100))
        throw OutOfBoundsException("The compression value is out of range, valid values are 0-100");
    if (!file)
        throw NilObjectException("The folder item passed cannot be nil");
    const imaging::Codec* const codec = Encoder(format);
    WithPixels(
        [&] {
            FileWriter writer(file->Path());
            WithPixels(
                [&] { codec->encode(pixels, static_cast<int>(quality), writer); }, NoMemoryToEncode(format));
            writer.Commit();
        },
        "mémoire insuffisante pour enregistrer cette image");
}

} // namespace veltrane
