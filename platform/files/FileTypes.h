#pragma once

#include <string>

#include "platform/values/String.h"

namespace veltrane {

/// Declares a file type to the platform. `extensions`: each with its dot, parted by ";". A second
/// registration under the same name replaces the first.
void RuntimeRegisterFileType(const String& name, const String& macCreator, const String& macType,
    const String& extensions, const String& uti);

/// Takes a declaration back; nothing when the name is not registered.
void RuntimeDeregisterFileType(const String& name);

namespace filetypes {

/// Whether a file of this name belongs to one of the registered types that `accepted` lists, by its
/// extension. Letter case does not count; an empty name in the list stands for nothing.
[[nodiscard]] bool FitsByName(const String& accepted, const String& fileName);

/// Whether the file at this path holds a picture of one of the declared formats, whatever its name.
/// False when it cannot be read or is no regular file.
[[nodiscard]] bool FitsByContent(const std::string& path) noexcept;

} // namespace filetypes

} // namespace veltrane
