#pragma once

#include <vector>

#include "platform/values/Ref.h"
#include "platform/values/String.h"

namespace veltrane {

/// One menu entry, with child entries.
class MenuItem : public Counted {
public:
    /// Makes an empty entry; run once, after the object exists.
    virtual void Constructor() { }

    /// The name by which Child and _Lookup find the entry.
    [[nodiscard]] const String& Name() const noexcept { return name; }
    void Name(const String& fresh);

    /// The shown text; "&" stands before the letter that the keyboard takes, "-" alone is a separator.
    [[nodiscard]] const String& Text() const noexcept { return text; }
    void Text(const String& fresh);

    /// Such as "Cmd+Q"; Cmd is the platform's own modifier. Empty: none.
    [[nodiscard]] const String& KeyboardShortcut() const noexcept { return keyboardShortcut; }
    void KeyboardShortcut(const String& fresh);

    /// Whether the platform decides if the entry can be chosen: it can when choosing it does something.
    [[nodiscard]] bool AutoEnable() const noexcept { return autoEnable; }
    void AutoEnable(bool yes);

    [[nodiscard]] bool Visible() const noexcept { return visible; }
    void Visible(bool yes);

    /// Adds a child entry at the end. Raises NilObjectException for nil, MenuHasParentException when the
    /// child stands in a menu already.
    void Append(const Ref<MenuItem>& child);

    /// The child entry of that name; nil when there is none.
    [[nodiscard]] Ref<MenuItem> Child(const String& childName) const;

    /// The entry of that name from this one down, depth first; nil when there is none.
    [[nodiscard]] Ref<MenuItem> _Lookup(const String& wanted);

    [[nodiscard]] const std::vector<Ref<MenuItem>>& Children() const noexcept { return children; }
    [[nodiscard]] bool IsSeparator() const noexcept { return text.Bytes() == "-"; }

    /// Whether the user can choose it.
    [[nodiscard]] bool Enabled() const noexcept { return HasAction() || !children.empty(); }

    /// For bodies: the user has chosen the entry. Runs under the application's failure rule.
    void Choose();

protected:
    [[nodiscard]] virtual bool HasAction() const noexcept { return false; }

    /// What choosing the entry does.
    virtual void Action() { }

private:
    String name, text, keyboardShortcut;
    bool autoEnable = true, visible = true, hasParent = false;
    std::vector<Ref<MenuItem>> children;
};

/// Root of a menu tree.
class MenuBar : public MenuItem { };

/// Menu entry that quits the application.
class QuitMenuItem final : public MenuItem {
protected:
    [[nodiscard]] bool HasAction() const noexcept override { return true; }
    void Action() override;
};

/// Ends the application as the window's close button does.
void QuitMenuAction();

} // namespace veltrane
