#pragma once

#include <vector>

#include "filetypes/FileType.h"
#include "platform/values/Ref.h"
#include "platform/values/String.h"

namespace veltrane {

/// The picture types that the program declares, and the list of those that its window takes.
namespace Image {

/// The names of the five types, each followed by ";".
inline constexpr const char* All = "image/gif;image/jpeg;image/pict;image/png;image/tiff;";

/// The types; nil before _Initialize.
[[nodiscard]] const Ref<FileType>& ImageGif() noexcept;
[[nodiscard]] const Ref<FileType>& ImageJpeg() noexcept;
[[nodiscard]] const Ref<FileType>& ImagePict() noexcept;
[[nodiscard]] const Ref<FileType>& ImagePng() noexcept;
[[nodiscard]] const Ref<FileType>& ImageTiff() noexcept;

/// All types in the order of their making; empty before _Initialize.
[[nodiscard]] const std::vector<Ref<FileType>>& AllFileTypes() noexcept;

/// Makes and registers the five types; once, before the application object exists.
void _Initialize();

} // namespace Image

} // namespace veltrane
