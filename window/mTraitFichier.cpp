#include "window/WVeltrane.h"

namespace veltrane {

void WVeltrane::mTraitFichier(const Ref<FolderItem>& f)
{
    if (!f->Exists())
        return;
    const Ref<Picture> decoded = Picture::Open(f);
    pImage = __New<Picture>(decoded->Width(), decoded->Height());
    pImage->Graphics()->DrawPicture(decoded, 0.0, 0.0, Graphics::kOwnSize, Graphics::kOwnSize, 0.0, 0.0,
        Graphics::kOwnSize, Graphics::kOwnSize);
    pFich = f;
    Title("Veltrane V2 : " + pFich->Name());
    CV()->Refresh(true);

    const String suffix = Right(pFich->Name(), 4);
    if (Compare(suffix, ".png") != 0 && CbPNG()->Value())
        mSauveImage(false, true);
    if (Compare(suffix, ".jpg") != 0 && CbJPG()->Value())
        mSauveImage(true, false);

    nbFichiers += 1;
    lbNbFich()->Text(Str(nbFichiers) + " fichiers traités depuis l'ouverture.");
}

} // namespace veltrane
