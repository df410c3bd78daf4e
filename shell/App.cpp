#include "shell/App.h"

#include "platform/run/Runtime.h"
#include "preferences/BoPreference.h"
#include "window/WVeltrane.h"

namespace veltrane {

Ref<class App> App()
{
    return Cast<class App>(Runtime::Current().RegisteredApplication());
}

void App::Event_Open()
{
    veltrane::App()->AutoQuit(true);
    BoPreference::prefLecture();
    WVeltrane()->CbJPG()->Value(BoPreference::getPrefBoolean("ConversionJPG", false));
    WVeltrane()->CbPNG()->Value(BoPreference::getPrefBoolean("ConversionPNG", true));
    WVeltrane()->SLQualite()->Value(BoPreference::getPrefInteger("TauxJPG", 70));
}

void App::Event_OpenDocument(const Ref<FolderItem>& item)
{
    WVeltrane()->mTraitFichier(item);
}

void App::Event_Close()
{
    BoPreference::prefSauvegarde();
}

void App::Constructor() { }

} // namespace veltrane
