#pragma once

#include <cstdint>
#include <span>

namespace veltrane::imaging {

/// A block of bytes owned by somebody else.
using Bytes = std::span<const std::uint8_t>;

} // namespace veltrane::imaging
