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

// The source must not change, also where it is a link that leads to its own copy's place.
Ref<FolderItem> CopyOf(const Ref<FolderItem>& source, const char* suffix)
{
    const Ref<FolderItem> copy = source->Parent()->Child(BaseName(source->Name()) + suffix);
    if (copy && copy->IsBehind(*source))
        throw IOException("« " + copy->Name() + " » est le fichier d'origine");
    return copy;
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
            pImage->Save(copy, FormatCodeJPEG, quality);
        }
        if (bPNG) {
            const Ref<FolderItem> copy = CopyOf(pFich, ".png");
            pImage->Save(copy, FormatCodePNG, Picture::DefaultQuality);
        }
    } catch (const RuntimeException& failure) {
        MsgBox("Erreur de type : " + failure.Message());
    }
}

} // namespace veltrane
