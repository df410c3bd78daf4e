#include "shell/MainMenuBar.h"

#include <span>

namespace veltrane {

namespace {

Ref<class MainMenuBar> implicitInstance;

enum class Kind { Menu, Plain, Separator, Quit };

struct Entry {
    const char* name;
    Kind kind;
    const char* text;
    const char* shortcut;
};

constexpr Entry kFile[] = {
    { "FileMenu", Kind::Menu, "&File", "" },
    { "FileQuit", Kind::Quit, "&Quit", "Cmd+Q" },
};

constexpr Entry kEdit[] = {
    { "EditMenu", Kind::Menu, "&Edit", "" },
    { "EditUndo", Kind::Plain, "&Undo", "Cmd+Z" },
    { "EditSeparator1", Kind::Separator, "-", nullptr },
    { "EditCut", Kind::Plain, "Cu&t", "Cmd+X" },
    { "EditCopy", Kind::Plain, "&Copy", "Cmd+C" },
    { "EditPaste", Kind::Plain, "&Paste", "Cmd+V" },
    { "EditClear", Kind::Plain, "&Delete", "" },
    { "EditSeparator2", Kind::Separator, "-", nullptr },
    { "EditSelectAll", Kind::Plain, "Select &All", "Cmd+A" },
};

Ref<MenuItem> Make(const Entry& entry)
{
    const Ref<MenuItem> item
        = entry.kind == Kind::Quit ? Ref<MenuItem>(New<QuitMenuItem>()) : New<MenuItem>();
    item->Constructor();
    item->Name(entry.name);
    item->AutoEnable(true);
    item->Text(entry.text);
    item->Visible(true);
    if (entry.kind != Kind::Separator)
        item->KeyboardShortcut(entry.shortcut);
    return item;
}

// The first entry is the menu itself.
void Build(MenuBar& bar, std::span<const Entry> menu)
{
    bar.Append(Make(menu.front()));
    for (const Entry& entry : menu.subspan(1)) {
        const Ref<MenuItem> item = Make(entry);
        bar.Child(menu.front().name)->Append(item);
    }
}

} // namespace

Ref<class MainMenuBar> MainMenuBar()
{
    if (!implicitInstance) {
        const auto bar = New<class MainMenuBar>(MainMenuBar::Clef {});
        bar->Constructor();
        implicitInstance = bar;
    }
    return implicitInstance;
}

void MainMenuBar::Constructor()
{
    Untitled0();
    Untitled1();
}

void MainMenuBar::Untitled0()
{
    Build(*this, kFile);
}

void MainMenuBar::Untitled1()
{
    Build(*this, kEdit);
}

} // namespace veltrane
