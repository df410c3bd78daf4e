#pragma once

#include <cstdint>
#include <span>

namespace veltrane::imaging {

/// Lengths of a prefix code for at most 288 symbols of the given frequencies, of at most `longest` bits (63
/// or fewer, and enough for all); 0 for those that do not occur. At least two symbols get a code, since some
/// readers refuse fewer. Rarer symbols never get shorter codes; of equally rare ones, the first get the
/// longest.
void BuildLengths(
    std::span<const std::uint32_t> frequencies, unsigned longest, std::span<std::uint8_t> lengths);

} // namespace veltrane::imaging
