#include "platform/Picture.h"

#include "platform/Faults.h"
#include "platform/FileReader.h"
#include "platform/FileWriter.h"
#include "platform/PictureGraphics.h"
#include "platform/codecs/Codec.h"

namespace veltrane {

namespace {

bool InRange(std::int64_t side)
{
    return side >= 1 && side <= codecs::Limits::kLargestSide;
}

codecs::Bitmap Blank(std::int64_t width, std::int64_t height)
{
    if (!InRange(height) || !InRange(width))
        throw codecs::Fault(codecs::Fault::SideOutOfRange);
    return codecs::Bitmap::Transparent(static_cast<int>(width), static_cast<int>(height));
}

codecs::Bitmap Decode(const std::string& path)
{
    const codecs::Limits limits = codecs::Limits::OfThisMachine();
    const FileBytes file = ReadFile(path, static_cast<std::size_t>(limits.maxBytes));
    const codecs::Codec* const codec = codecs::Find(file.View());
    if (codec == nullptr)
        throw UnsupportedFormatException(file.size == 0 ? "fichier vide" : "format non reconnu");
    return codec->decode(file.View(), limits);
}

const codecs::Codec* Encoder(std::int64_t format)
{
    const std::string_view name = format == FormatCodePNG ? "PNG" : format == FormatCodeJPEG ? "JPEG" : "";
    for (const codecs::Codec* codec : codecs::All()) {
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
    const codecs::Codec* const codec = Encoder(format);
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
