#include "shell/Startup.h"

#include "filetypes/Image.h"
#include "platform/run/Runtime.h"
#include "shell/App.h"
#include "shell/MainMenuBar.h"
#include "window/WVeltrane.h"

namespace veltrane {

void _Main()
{
    Runtime::Current().RunSteps([] {
        _EarlyStartup();
        _RunFrameworkInitialization(_LateStartup);
        _RuntimeRun();
    });
}

void _EarlyStartup()
{
    Application::_SetSupportsHiDPI(true);
    _InitFileTypes();
    _NewAppInstance();
}

void _InitFileTypes()
{
    Image::_Initialize();
}

void _NewAppInstance()
{
    const auto app = New<class App>(App::Clef {});
    app->Constructor();
    app->MenuBar(MainMenuBar());
    Runtime::Current().Register(app);
}

void _LateStartup()
{
    _MakeDefaultView();
}

void _MakeDefaultView()
{
    // Called for its effect: the window exists from here on.
    (void)WVeltrane();
}

} // namespace veltrane
