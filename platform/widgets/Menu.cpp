#include "platform/widgets/Menu.h"

#include "platform/run/Runtime.h"
#include "platform/values/Exceptions.h"

namespace veltrane {

void MenuItem::Name(const String& fresh)
{
    RequireMainThread();
    name = fresh;
}

void MenuItem::Text(const String& fresh)
{
    RequireMainThread();
    text = fresh;
}

void MenuItem::KeyboardShortcut(const String& fresh)
{
    RequireMainThread();
    keyboardShortcut = fresh;
}

void MenuItem::AutoEnable(bool yes)
{
    RequireMainThread();
    autoEnable = yes;
}

void MenuItem::Visible(bool yes)
{
    RequireMainThread();
    visible = yes;
}

void MenuItem::Append(const Ref<MenuItem>& child)
{
    RequireMainThread();
    if (child->hasParent)
        throw MenuHasParentException();
    children.push_back(child);
    child->hasParent = true;
}

Ref<MenuItem> MenuItem::Child(const String& childName) const
{
    RequireMainThread();
    for (const Ref<MenuItem>& child : children) {
        if (Compare(child->name, childName) == 0)
            return child;
    }
    return nullptr;
}

Ref<MenuItem> MenuItem::_Lookup(const String& wanted)
{
    RequireMainThread();
    if (Compare(name, wanted) == 0)
        return Ref<MenuItem>(this);
    for (const Ref<MenuItem>& child : children) {
        if (const Ref<MenuItem> found = child->_Lookup(wanted))
            return found;
    }
    return nullptr;
}

void MenuItem::Choose()
{
    if (Enabled())
        Runtime::Current().Guard([self = Ref<MenuItem>(this)] { self->Action(); });
}

void QuitMenuItem::Action()
{
    QuitMenuAction();
}

void QuitMenuAction()
{
    RequireMainThread();
    Runtime::Current().RequestQuit();
}

} // namespace veltrane
