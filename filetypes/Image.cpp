#include "filetypes/Image.h"

namespace veltrane {

namespace {

Ref<FileType> pImageGif, pImageJpeg, pImagePict, pImagePng, pImageTiff;
std::vector<Ref<FileType>> pAllFileTypes;

struct Record {
    Ref<FileType>& property;
    const Ref<FileType>& (*accessor)() noexcept;
    const char *name, *extensions, *macType, *macCreator, *uti;
};

const Record kRecords[] = {
    { pImageGif, Image::ImageGif, "image/gif", ".gif", "GIFf", "prvw", "com.compuserve.gif" },
    { pImageJpeg, Image::ImageJpeg, "image/jpeg", ".jfif;.jpe;.jpeg;.jpg", "JPEG", "prvw", "public.jpeg" },
    { pImagePict, Image::ImagePict, "image/pict", ".pict;.pic;.pct", "PICT", "ttxt", "com.apple.pict" },
    { pImagePng, Image::ImagePng, "image/png", ".png", "PNGf", "ogle", "public.png" },
    { pImageTiff, Image::ImageTiff, "image/tiff", ".jfx;.tif;.tiff", "TIFF", "????", "public.tiff" },
};

void Make(const Record& record)
{
    record.property = New<FileType>();
    FileType& type = *record.property;
    type.Name(record.name);
    type.Extensions(record.extensions);
    type.MacType(record.macType);
    type.MacCreator(record.macCreator);
    type.MimeType(nullptr);
    type.Imported(true);
    type.ConformsTo(nullptr);
    type.UTI(record.uti);
    pAllFileTypes.push_back(record.property);
    // Using a type as a string registers it; the string itself has no use here.
    (void)record.accessor()->Operator_Convert();
}

} // namespace

const Ref<FileType>& Image::ImageGif() noexcept
{
    return pImageGif;
}

const Ref<FileType>& Image::ImageJpeg() noexcept
{
    return pImageJpeg;
}

const Ref<FileType>& Image::ImagePict() noexcept
{
    return pImagePict;
}

const Ref<FileType>& Image::ImagePng() noexcept
{
    return pImagePng;
}

const Ref<FileType>& Image::ImageTiff() noexcept
{
    return pImageTiff;
}

const std::vector<Ref<FileType>>& Image::AllFileTypes() noexcept
{
    return pAllFileTypes;
}

void Image::_Initialize()
{
    for (const Record& record : kRecords)
        Make(record);
}

} // namespace veltrane
