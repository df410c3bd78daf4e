#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/tiff/Page.h"

namespace veltrane::imaging {

/// Takes `count` samples from the start of a row, as the library leaves them (16 to 64 bits in the machine's
/// byte order, others packed from the high bit down), to the range of T: 0 stays 0, the largest becomes the
/// largest, what lies between is rounded. Sample i goes to to[i * step]. T is std::uint8_t or std::uint16_t.
template<class T>
void Unpack(const TiffPage& page, const std::uint8_t* row, std::size_t count, T* to, std::size_t step);

extern template void Unpack(const TiffPage&, const std::uint8_t*, std::size_t, std::uint8_t*, std::size_t);
extern template void Unpack(const TiffPage&, const std::uint8_t*, std::size_t, std::uint16_t*, std::size_t);

/// The same for samples of at most 16 bits, their numbers unchanged.
void UnpackIndices(
    const TiffPage& page, const std::uint8_t* row, std::size_t count, std::uint16_t* to, std::size_t step);

} // namespace veltrane::imaging
