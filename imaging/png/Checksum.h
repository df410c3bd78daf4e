#pragma once

#include <cstdint>

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging::png {

/// The checksum of a chunk: of its type and its data, which lie behind each other.
/// Source: PNG 3rd ed., 5.5.
[[nodiscard]] std::uint32_t ChecksumOf(Bytes typeAndData) noexcept;

} // namespace veltrane::imaging::png
