#include "platform/qt/widgets/MenuView.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>

#include "platform/qt/Text.h"
#include "platform/qt/widgets/Edge.h"

namespace veltrane::qt {

namespace {

// "Cmd" is the platform's own modifier: what Qt calls Ctrl, on a Mac too.
QKeySequence Shortcut(const MenuItem& item)
{
    return QKeySequence::fromString(
        ToQString(ReplaceAll(item.KeyboardShortcut(), "Cmd+", "Ctrl+")), QKeySequence::PortableText);
}

void AddEntry(QMenu& menu, const Ref<MenuItem>& item);

void Fill(QMenu& menu, const MenuItem& parent)
{
    for (const Ref<MenuItem>& child : parent.Children()) {
        if (child->Visible())
            AddEntry(menu, child);
    }
}

void AddEntry(QMenu& menu, const Ref<MenuItem>& item)
{
    if (item->IsSeparator()) {
        menu.addSeparator();
        return;
    }
    if (!item->Children().empty()) {
        Fill(*menu.addMenu(ToQString(item->Text())), *item);
        return;
    }
    QAction* const entry = menu.addAction(ToQString(item->Text()));
    entry->setShortcut(Shortcut(*item));
    entry->setEnabled(item->Enabled());
    // Qt would move entries with well-known words to other menus on some desktops.
    entry->setMenuRole(
        dynamic_cast<QuitMenuItem*>(item.Get()) != nullptr ? QAction::QuitRole : QAction::NoRole);
    QObject::connect(entry, &QAction::triggered, entry, [item] { AtEdge([&item] { item->Choose(); }); });
}

} // namespace

void ShowMenus(QMenuBar& bar, const Ref<MenuItem>& root)
{
    bar.clear();
    if (!root)
        return;
    for (const Ref<MenuItem>& menu : root->Children()) {
        if (menu->Visible())
            Fill(*bar.addMenu(ToQString(menu->Text())), *menu);
    }
}

} // namespace veltrane::qt
