#pragma once

#include <cstdint>
#include <span>

namespace veltrane::codecs::png {

/// Lengths of a prefix code for symbols of the given frequencies, of at most `longest` bits; 0 for those
/// that do not occur. At least two symbols get a code, since some readers refuse fewer.
void BuildLengths(
    std::span<const std::uint32_t> frequencies, unsigned longest, std::span<std::uint8_t> lengths);

/// The codes that deflate derives from the lengths, their first bit lowest. Source: RFC 1951, 3.2.2.
void AssignCodes(std::span<const std::uint8_t> lengths, std::span<std::uint16_t> codes);

} // namespace veltrane::codecs::png
