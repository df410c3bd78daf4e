#pragma once

#include <cstdint>
#include <span>

namespace veltrane::imaging {

/// The codes that deflate derives from the lengths, their first bit lowest. Source: RFC 1951, 3.2.2.
void AssignCodes(std::span<const std::uint8_t> lengths, std::span<std::uint16_t> codes);

} // namespace veltrane::imaging
