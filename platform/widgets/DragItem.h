#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/files/FolderItem.h"
#include "platform/values/Ref.h"
#include "platform/values/String.h"

namespace veltrane {

/// The payload of a drop: a cursor over the dropped items, on the first one at the start.
class DragItem : public Counted {
public:
    /// The items of a drop as percent-encoded addresses. `acceptedTypes` is what the window takes
    /// (Window::AcceptedTypes): other files, folders and remote addresses count as no file.
    DragItem(std::vector<std::string> addresses, const String& acceptedTypes);

    /// Whether such a drag holds anything that the window takes. Names are asked first, contents only
    /// until one fits: cheap enough to ask while the drag hovers.
    [[nodiscard]] static bool HoldsAnyOf(
        const std::vector<std::string>& addresses, const String& acceptedTypes);

    /// Whether the current item is a file of the accepted types, as the disk is at this moment. A file
    /// whose name fits and that has gone counts as one.
    [[nodiscard]] bool FolderItemAvailable() const;

    /// The file of the current item; nil when it is none. The item is from now on the one in hand, which a
    /// message about a failure names.
    [[nodiscard]] Ref<veltrane::FolderItem> FolderItem() const;

    /// The paths of all items that are local files, of whatever type.
    [[nodiscard]] std::vector<std::string> LocalPaths() const;

    /// Moves to the next item; false when there is none.
    bool NextItem();

    /// How many items stand behind the current one.
    [[nodiscard]] std::size_t ItemsLeft() const noexcept;

private:
    std::vector<std::string> addresses;
    String acceptedTypes;
    std::size_t current = 0;
};

} // namespace veltrane
