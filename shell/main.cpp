#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/files/FolderItem.h"
#include "platform/files/UriList.h"
#include "platform/process/Confinement.h"
#include "platform/process/Process.h"
#include "platform/qt/QtToolkit.h"
#include "platform/qt/onewindow/OneWindow.h"
#include "platform/run/Runtime.h"
#include "shell/Startup.h"

using namespace veltrane;

namespace {

// What an argument means: a path, or a "file:" address where no such path exists. Nil for an empty one.
Ref<FolderItem> Document(const char* argument)
{
    const Ref<FolderItem> path = FolderItem::FromPath(argument);
    const std::optional<std::string> address = LocalPath(argument);
    return address && path && !path->Exists() ? FolderItem::FromPath(*address) : path;
}

std::vector<Ref<FolderItem>> Documents(std::span<char*> arguments)
{
    std::vector<Ref<FolderItem>> documents;
    for (const char* const argument : arguments) {
        if (const Ref<FolderItem> document = Document(argument))
            documents.push_back(document);
    }
    return documents;
}

} // namespace

int main(int count, char** arguments)
{
    PrepareProcess();
#ifndef VELTRANE_UNCONFINED
    (void)EnterDomain(); // no Landlock in this kernel: the filter below does what it can
#endif
    PrepareAllocator();
    const std::vector<Ref<FolderItem>> documents
        = Documents(std::span(arguments, static_cast<std::size_t>(count)).subspan(1));
    OneWindow oneWindow;
    if (oneWindow.HandOver(documents))
        return 0;
    const std::unique_ptr<Toolkit> body = MakeQtToolkit(oneWindow);
    if (!body)
        return 1;
#ifndef VELTRANE_UNCONFINED
    (void)Confine(); // in a container it may be refused; pictures are converted there all the same
#endif
    Runtime runtime(*body);
    for (const Ref<FolderItem>& document : documents)
        runtime.OpenDocument(document);
    _Main();
    return runtime.ExitStatus();
}
