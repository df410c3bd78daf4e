#include "platform/run/Runtime.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <utility>

#include <unistd.h>

#include "platform/run/Application.h"
#include "platform/values/Exceptions.h"
#include "platform/widgets/DragItem.h"
#include "platform/widgets/Window.h"

namespace veltrane {

namespace {

Runtime* current = nullptr;

// The file that the system started. Asked once: after an upgrade under the running program the system
// would answer with a name that no longer is.
std::string RunningExecutable()
{
    std::array<char, 4096> path {};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

String Fault(const RuntimeException& failure)
{
    if (!failure.Message().Empty())
        return failure.Message();
    return "erreur interne (" + String(failure.ClassName()) + ")";
}

String LeftOver(std::size_t left)
{
    if (left == 0)
        return {};
    const String count = Str(static_cast<std::int64_t>(left));
    return left == 1 ? "\n\n1 élément du dépôt n'a pas été traité."
                     : "\n\n" + count + " éléments du dépôt n'ont pas été traités.";
}

} // namespace

Runtime::Runtime(Toolkit& body)
    : body(body), mainThread(std::this_thread::get_id()), executable(RunningExecutable())
{
    current = this;
}

Runtime::~Runtime()
{
    waiting.clear();
    windows.clear();
    application = nullptr;
    current = nullptr;
}

Runtime& Runtime::Current() noexcept
{
    return *current;
}

void Runtime::Register(const Ref<Application>& object)
{
    application = object;
}

Ref<FolderItem> Runtime::ExecutableFile() const
{
    return FolderItem::FromPath(executable);
}

void Runtime::RunSteps(const std::function<void()>& steps)
{
    try {
        steps();
    } catch (const RuntimeException& failure) {
        exitStatus = 1;
        UnhandledException(failure);
    }
}

void Runtime::Run()
{
    Guard([this] { application->Event_Open(); });
    running = true;
    for (const Ref<Window>& window : std::vector(windows))
        window->Appear();
    if (!waiting.empty())
        body.WakeUp();
    if (!ended)
        body.Loop();
}

void Runtime::Fail() noexcept
{
    exitStatus = 1;
    ended = true;
    body.EndLoop();
}

void Runtime::Enter(const Ref<Window>& window)
{
    windows.push_back(window);
}

void Runtime::Leave(const Ref<Window>& window)
{
    std::erase(windows, window);
    if (windows.empty() && application->AutoQuit())
        EndApplication();
}

Ref<Window> Runtime::LiveWindow(const String& className) const
{
    for (const Ref<Window>& window : windows) {
        if (Compare(window->_ClassName(), className) == 0)
            return window;
    }
    return nullptr;
}

void Runtime::OpenDocument(const Ref<FolderItem>& file)
{
    Post({ Waiting::Kind::Document, [this, file, waits = originals.Await({ file->Path() })] {
              TakeInHand(file, 0);
              application->Event_OpenDocument(file);
          } });
}

bool Runtime::TakesDocuments() const noexcept
{
    const auto closes = [](const Waiting& event) { return event.kind == Waiting::Kind::Close; };
    return !ended && (underWay == nullptr || !closes(*underWay)) && std::ranges::none_of(waiting, closes);
}

void Runtime::Drop(const Ref<Window>& window, const Ref<DragItem>& payload)
{
    Post({ Waiting::Kind::Drop,
        [window, payload, waits = originals.Await(payload->LocalPaths())] { window->TakeDrop(payload); } });
}

void Runtime::TellLater(const RuntimeException& failure)
{
    Post({ Waiting::Kind::Message, [this, message = Describe(failure)] { ShowMessage(message); } });
}

void Runtime::RequestClose(const Ref<Window>& window)
{
    PostClose([window] { window->CloseNow(); });
}

void Runtime::RequestQuit()
{
    PostClose([this] { CloseAll(); });
}

void Runtime::RequestEnd()
{
    mute = true;
    body.CloseBox();
    RequestQuit();
}

void Runtime::Post(Waiting event)
{
    if (ended)
        return;
    waiting.push_back(std::move(event));
    if (running)
        body.WakeUp();
}

// A close goes before everything that waits: the user wants no more of it.
void Runtime::PostClose(std::function<void()> close)
{
    if (ended)
        return;
    closeNoted = true;
    waiting.push_front({ Waiting::Kind::Close, std::move(close) });
    if (running)
        body.WakeUp();
}

void Runtime::RunNextEvent()
{
    if (underWay != nullptr || waiting.empty() || !running || ended)
        return;
    const Waiting event = std::move(waiting.front());
    waiting.pop_front();
    Dispatch(event);
    if (!waiting.empty() && !ended)
        body.WakeUp();
}

void Runtime::Dispatch(const Waiting& event)
{
    const bool takesFiles = event.kind == Waiting::Kind::Document || event.kind == Waiting::Kind::Drop;
    underWay = &event;
    stopNoted = false;
    if (event.kind == Waiting::Kind::Close)
        closeNoted = false;
    if (takesFiles)
        body.BusyPointer(true);
    Guard(event.run);
    if (takesFiles)
        body.BusyPointer(false);
    inHand = {};
    underWay = nullptr;
}

void Runtime::CloseAll()
{
    for (const Ref<Window>& window : std::vector(windows))
        window->CloseNow();
    EndApplication();
}

void Runtime::EndApplication()
{
    if (std::exchange(ended, true))
        return;
    waiting.clear();
    Guard([this] { application->Event_Close(); });
    body.EndLoop();
}

void Runtime::Guard(const std::function<void()>& routine)
{
    if (application)
        application->_CallFunctionWithExceptionHandling(routine);
    else
        routine();
}

void Runtime::TakeInHand(const Ref<FolderItem>& file, std::size_t left)
{
    inHand = { file, left };
    if (file)
        originals.TakeIn(file->Path());
}

Ref<FolderItem> Runtime::OriginalReplacedBy(const Ref<FolderItem>& copy) const
{
    return FolderItem::FromPath(originals.ReplacedAt(copy->Path()));
}

String Runtime::Describe(const RuntimeException& failure) const
{
    if (!inHand.file)
        return "Une erreur est survenue : " + Fault(failure) + ".";
    return "Le fichier « " + inHand.file->Name() + " » n'a pas pu être traité : " + Fault(failure) + "."
        + LeftOver(inHand.left);
}

void Runtime::UnhandledException(const RuntimeException& failure)
{
    const String message = Describe(failure);
    inHand.left = 0; // an exception that comes out of a drop has ended it
    ShowMessage(message);
}

bool Runtime::FilesWait() const noexcept
{
    const auto takesFiles = [](const Waiting& event) {
        return event.kind == Waiting::Kind::Document || event.kind == Waiting::Kind::Drop;
    };
    return inHand.left > 0 || std::ranges::any_of(waiting, takesFiles);
}

void Runtime::DropWaitingFiles()
{
    std::erase_if(waiting, [](const Waiting& event) {
        return event.kind == Waiting::Kind::Document || event.kind == Waiting::Kind::Drop;
    });
}

void Runtime::ShowMessage(const String& message)
{
    if (mute) {
        std::cerr << message.Bytes() << '\n';
        return;
    }
    if (body.ShowBox({ message, FilesWait() }) == Box::Answer::Stop) {
        stopNoted = true;
        DropWaitingFiles();
    }
}

void Runtime::Yield()
{
    body.Yield();
    const bool inDrop = underWay != nullptr && underWay->kind == Waiting::Kind::Drop;
    if (inDrop && (closeNoted || stopNoted))
        throw EndException();
}

void RuntimeBackgroundTask()
{
    Runtime::Current().Yield();
}

void MsgBox(const String& message)
{
    RequireMainThread();
    Runtime::Current().ShowMessage(message);
}

void RequireMainThread()
{
    if (!Runtime::Current().OnMainThread())
        throw ThreadAccessingUIException("A thread has attempted to manipulate a user interface element. "
                                         "This can only be done from the application's main thread.");
}

void _RunFrameworkInitialization(const std::function<void()>& lateStartup)
{
    lateStartup();
}

void _RuntimeRun()
{
    Runtime::Current().Run();
}

} // namespace veltrane
