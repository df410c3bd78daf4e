#include "filetypes/Image.h"
#include "platform/run/Runtime.h"
#include "platform/values/Text.h"
#include "preferences/BoPreference.h"
#include "window/Fit.h"
#include "window/WVeltrane.h"

namespace veltrane {

namespace {

constexpr Colour kWhite = 0x00FFFFFF;

} // namespace

void WVeltrane::Event_Open()
{
    AcceptFileDrop(Image::All);
}

void WVeltrane::Event_DropObject(const Ref<DragItem>& obj, std::int64_t)
{
    do {
        if (obj->FolderItemAvailable())
            mTraitFichier(obj->FolderItem());
        RuntimeBackgroundTask();
    } while (obj->NextItem());
}

void WVeltrane::Event_Close()
{
    BoPreference::setPref("ConversionJPG", CbJPG()->Value());
    BoPreference::setPref("ConversionPNG", CbPNG()->Value());
    BoPreference::setPref("TauxJPG", SLQualite()->Value());
}

void WVeltrane::CV_Paint(const Ref<Canvas>&, const Ref<Graphics>& g, std::span<const Rect>)
{
    g->ForeColor(kWhite);
    g->FillRect(0.0, 0.0, static_cast<double>(g->Width()), static_cast<double>(g->Height()));
    if (!pImage)
        return;
    const Rect at = FitCentred(pImage->Width(), pImage->Height(), g->Width(), g->Height());
    g->DrawPicture(pImage, static_cast<double>(at.left), static_cast<double>(at.top),
        static_cast<double>(at.width), static_cast<double>(at.height), 0.0, 0.0,
        static_cast<double>(pImage->Width()), static_cast<double>(pImage->Height()));
}

void WVeltrane::SLQualite_ValueChanged(const Ref<Slider>& sender)
{
    ShowQuality(sender);
}

void WVeltrane::SLQualite_Open(const Ref<Slider>& sender)
{
    ShowQuality(sender);
}

void WVeltrane::ShowQuality(const Ref<Slider>& sender)
{
    const Ref<Label> label = TypeQual();
    const Text quality = Int64::ToText(sender->Value(), nullptr);
    label->Text(Text("Qualité (") + quality + "%) : ");
}

} // namespace veltrane
