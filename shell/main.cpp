#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/FolderItem.h"
#include "platform/Process.h"
#include "platform/Runtime.h"
#include "platform/UriList.h"
#include "platform/qt/QtToolkit.h"
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

} // namespace

int main(int count, char** arguments)
{
    PrepareProcess();
    const std::unique_ptr<Toolkit> body = MakeQtToolkit();
    if (!body)
        return 1;
    Runtime runtime(*body);
    for (const char* const argument : std::span(arguments, static_cast<std::size_t>(count)).subspan(1)) {
        if (const Ref<FolderItem> document = Document(argument))
            runtime.OpenDocument(document);
    }
    _Main();
    return runtime.ExitStatus();
}
