#pragma once

#include <cstdint>
#include <vector>

namespace veltrane::imaging {

/// Primaries and transfer function by their numbers in ITU-T H.273, as PNG's cICP chunk gives them.
/// Source: PNG 3rd ed., 11.3.2.6.
struct CodePoints {
    int primaries = 0;
    int transfer = 0;
};

/// Whether the code points say sRGB itself.
[[nodiscard]] bool IsSrgb(const CodePoints& points) noexcept;

/// An ICC profile that says the same as the code points; empty for those without one meaning on a screen:
/// unknown numbers and the curves for high dynamic range.
/// Source: ITU-T H.273 (2024), tables 2 and 3; ICC.1:2022, 8.3 and 10.18.
[[nodiscard]] std::vector<std::uint8_t> ProfileOf(const CodePoints& points);

} // namespace veltrane::imaging
