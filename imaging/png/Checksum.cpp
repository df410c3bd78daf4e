#include "imaging/png/Checksum.h"

#include <libdeflate.h>

namespace veltrane::imaging::png {

std::uint32_t ChecksumOf(Bytes typeAndData) noexcept
{
    return libdeflate_crc32(0, typeAndData.data(), typeAndData.size());
}

} // namespace veltrane::imaging::png
