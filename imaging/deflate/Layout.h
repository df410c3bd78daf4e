#pragma once

#include <cstddef>

namespace veltrane::imaging {

/// How rows lie in a stream.
struct Layout {
    std::size_t step; ///< bytes of a pixel, 1 where it takes less
    std::size_t stride; ///< bytes of a row, its filter byte included
};

} // namespace veltrane::imaging
