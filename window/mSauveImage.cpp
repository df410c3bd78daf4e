#include "platform/run/Runtime.h"
#include "platform/values/Exceptions.h"
#include "window/WVeltrane.h"

namespace veltrane {

namespace {

// The name without the first of each suffix that a picture of ours or of its kin bears.
String BaseName(const String& name)
{
    String base = name;
    for (const char* const suffix : { ".jpg", ".jpeg", ".png", ".bmp", ".gif" })
        base = Replace(base, suffix, nullptr);
    return base;
}

// No copy takes the place of a picture that this run works from, such as that of logo.jpg the place of a
// logo.png in the same drop.
void RefuseOriginal(const Ref<FolderItem>& copy, const Ref<FolderItem>& source)
{
    const Ref<FolderItem> original = Runtime::Current().OriginalReplacedBy(copy);
    if (!original)
        return;
    const String kept = copy->Path() == original->Path()
        ? "« " + copy->Name() + " » est un fichier d'origine"
        : "« " + copy->Name() + " » est un autre nom du fichier d'origine « " + original->Name() + " »";
    throw IOException(kept + " : la copie de « " + source->Name() + " » ne le remplace pas");
}

// Where the copy goes. The source must not change, even if it is a link that leads to its own copy's place.
Ref<FolderItem> CopyOf(const Ref<FolderItem>& source, const char* suffix)
{
    const Ref<FolderItem> copy = source->Parent()->Child(BaseName(source->Name()) + suffix);
    if (copy && copy->IsBehind(*source))
        throw IOException("« " + copy->Name() + " » est le fichier d'origine");
    if (copy)
        RefuseOriginal(copy, source);
    return copy;
}

// Writes a copy, and lets the run know that this file is none of its originals.
void Write(const Ref<Picture>& picture, const Ref<FolderItem>& copy, FormatCode format, std::int64_t quality)
{
    picture->Save(copy, format, quality);
    Runtime::Current().Copied(copy);
}

} // namespace

void WVeltrane::mSauveImage(bool bJPG, bool bPNG)
{
    const Ref<FolderItem> folder = pFich->Parent();
    if (!folder->IsWriteable()) {
        MsgBox("Dossier parent non autorisé en ecriture");
        return;
    }
    try {
        if (bJPG) {
            const Ref<FolderItem> copy = CopyOf(pFich, ".jpg");
            const std::int64_t quality = SLQualite()->Value();
            Write(pImage, copy, FormatCodeJPEG, quality);
        }
        if (bPNG) {
            const Ref<FolderItem> copy = CopyOf(pFich, ".png");
            Write(pImage, copy, FormatCodePNG, Picture::DefaultQuality);
        }
    } catch (const RuntimeException& failure) {
        MsgBox("Erreur de type : " + failure.Message());
    }
}

} // namespace veltrane
