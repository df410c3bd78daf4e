#pragma once

#include <cstdint>

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging {

/// One page's directory, by what has to be known before the library is let near it.
struct TiffDirectory {
    std::uint64_t offset = 0; ///< from the file's start
    std::int64_t width = 0; ///< 0 when it does not say
    std::int64_t height = 0;
    bool tellsExtraSamples = false; ///< whether the ExtraSamples tag is there
};

/// The directory of the page to show: the first full-size one, else the first of all. Raises
/// Fault when the first directory cannot be read, and when a directory's values could
/// not lie in the file without covering each other: the library would copy every one of them.
[[nodiscard]] TiffDirectory FindPage(Bytes file);

} // namespace veltrane::imaging
