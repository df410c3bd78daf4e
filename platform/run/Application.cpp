#include "platform/run/Application.h"

#include "platform/run/Runtime.h"
#include "platform/values/Exceptions.h"

namespace veltrane {

void Application::_SetSupportsHiDPI(bool yes)
{
    Runtime::Current().Body().SupportsHiDPI(yes);
}

Ref<FolderItem> Application::ExecutableFile() const
{
    return Runtime::Current().ExecutableFile();
}

Ref<veltrane::MenuBar> Application::MenuBar() const
{
    RequireMainThread();
    return menuBar;
}

void Application::MenuBar(const Ref<veltrane::MenuBar>& fresh)
{
    RequireMainThread();
    menuBar = fresh;
}

void Application::_CallFunctionWithExceptionHandling(const std::function<void()>& routine)
{
    const Ref<Application> self(this);
    try {
        routine();
    } catch (const EndException&) {
    } catch (const ThreadEndException&) {
    } catch (const RuntimeException& failure) {
        if (!UnhandledException(failure))
            Runtime::Current().UnhandledException(failure);
    }
}

} // namespace veltrane
