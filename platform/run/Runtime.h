#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/files/FolderItem.h"
#include "platform/files/Originals.h"
#include "platform/run/Toolkit.h"
#include "platform/values/Ref.h"
#include "platform/values/String.h"

namespace veltrane {

class Application;
class DragItem;
class RuntimeException;
class Window;

/// One run of the program: the registered application object, the record of live windows, and the events
/// that come one at a time. Documents, drops and the close wait here for their turn; a body asks for the
/// next one from its loop (RunNextEvent). Painting and the controls' own events do not wait.
class Runtime {
public:
    /// Starts a run on that body, which must outlive it. There is one at a time.
    explicit Runtime(Toolkit& body);

    /// The finalisers: closes what is open without raising events.
    ~Runtime();
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;

    /// The run that is on.
    [[nodiscard]] static Runtime& Current() noexcept;

    [[nodiscard]] Toolkit& Body() noexcept { return body; }

    /// What `main` gives back: 0, or 1 when start-up failed or the program was at fault.
    [[nodiscard]] int ExitStatus() const noexcept { return exitStatus; }

    /// The application object; nil before it is registered.
    [[nodiscard]] const Ref<Application>& RegisteredApplication() const noexcept { return application; }
    void Register(const Ref<Application>& object);

    [[nodiscard]] Ref<FolderItem> ExecutableFile() const;

    /// @name Start and stop
    /// @{

    /// Runs start-up steps: a RuntimeException ends them, goes to UnhandledException and makes the exit
    /// status 1.
    void RunSteps(const std::function<void()>& steps);

    /// Raises the application's Open event, shows the windows, then runs the loop until the application
    /// has ended.
    void Run();

    /// True from the end of the application's Open event on.
    [[nodiscard]] bool Running() const noexcept { return running; }

    /// The program is at fault: ends the loop; the exit status becomes 1. Nothing is saved.
    void Fail() noexcept;
    /// @}

    /// @name Windows
    /// @{
    void Enter(const Ref<Window>& window);
    void Leave(const Ref<Window>& window);
    [[nodiscard]] Ref<Window> LiveWindow(const String& className) const;
    /// @}

    /// @name What bodies report
    /// @{

    /// The desktop asks for a file to be opened.
    void OpenDocument(const Ref<FolderItem>& file);

    /// False once a close is waiting or under way: a document that came now would be dropped with the rest.
    [[nodiscard]] bool TakesDocuments() const noexcept;

    /// Items were dropped on the window.
    void Drop(const Ref<Window>& window, const Ref<DragItem>& payload);

    /// The user has pressed the window's close button.
    void RequestClose(const Ref<Window>& window);

    /// The user has chosen to quit: closes every window, then ends the application.
    void RequestQuit();

    /// The system wants the program to end (a signal, the desktop's logout): as RequestQuit, closes an open
    /// box, and no further box opens.
    void RequestEnd();

    /// Takes the next waiting event, if none is under way.
    void RunNextEvent();
    /// @}

    /// Runs a routine under the failure rule of the application, or of the platform before there is one.
    void Guard(const std::function<void()>& routine);

    /// What becomes of a failure that nobody caught: a box in French that tells the file in hand, the reason
    /// and how much of the drop was left, or the same on the error stream when there can be no box.
    void UnhandledException(const RuntimeException& failure);

    /// The same at a turn of its own, behind what is under way.
    void TellLater(const RuntimeException& failure);

    /// Shows a message and waits for the user.
    void ShowMessage(const String& message);

    /// One turn for the toolkit. Raises EndException inside a drop when a close or a stop was asked for.
    void Yield();

    /// Notes the file that is taken in now, for messages and as an original; `left` items of the drop follow
    /// it.
    void TakeInHand(const Ref<FolderItem>& file, std::size_t left);

    /// The original that a new file in the place of `copy` would replace: one that was taken in during this
    /// run, or that waits in the drop or among the documents. Nil when there is none.
    [[nodiscard]] Ref<FolderItem> OriginalReplacedBy(const Ref<FolderItem>& copy) const;

    /// Takes note that the file is a copy that has just been written, and no original.
    void Copied(const Ref<FolderItem>& copy) { originals.Copied(copy->Path()); }

    [[nodiscard]] bool OnMainThread() const noexcept { return std::this_thread::get_id() == mainThread; }

private:
    struct Waiting {
        enum class Kind { Document, Drop, Close, Message };
        Kind kind;
        std::function<void()> run;
    };
    struct InHand {
        Ref<FolderItem> file;
        std::size_t left = 0;
    };

    void Post(Waiting event);
    void PostClose(std::function<void()> close);
    void Dispatch(const Waiting& event);
    void CloseAll();
    void EndApplication();
    void DropWaitingFiles();
    [[nodiscard]] bool FilesWait() const noexcept;
    [[nodiscard]] String Describe(const RuntimeException& failure) const;

    Toolkit& body;
    std::thread::id mainThread;
    Ref<Application> application;
    std::vector<Ref<Window>> windows;
    std::deque<Waiting> waiting;
    const Waiting* underWay = nullptr;
    InHand inHand;
    Originals originals;
    std::string executable;
    int exitStatus = 0;
    bool running = false, starting = false, ended = false;
    bool closeNoted = false, stopNoted = false, mute = false;
};

/// The cooperative yield of the main thread.
void RuntimeBackgroundTask();

/// Shows a message in a box and returns when the user has closed it.
void MsgBox(const String& message);

/// Raises ThreadAccessingUIException when called on another thread than the main one.
void RequireMainThread();

/// Has `lateStartup` called once the toolkit stands.
void _RunFrameworkInitialization(const std::function<void()>& lateStartup);

/// The event loop; returns when the application has ended.
void _RuntimeRun();

} // namespace veltrane
