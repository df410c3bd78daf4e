#pragma once

#include <cstdint>

#include "platform/codecs/Bytes.h"

namespace veltrane::codecs::png {

/// The checksum of a chunk: of its type and its data, which lie behind each other.
/// Source: PNG 3rd ed., 5.5.
[[nodiscard]] std::uint32_t ChecksumOf(Bytes typeAndData) noexcept;

} // namespace veltrane::codecs::png
