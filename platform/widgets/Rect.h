#pragma once

#include <cstdint>

namespace veltrane {

/// A rectangle, in the units of whoever gives it.
struct Rect {
    std::int64_t left = 0;
    std::int64_t top = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;

    friend bool operator==(const Rect&, const Rect&) = default;
};

} // namespace veltrane
