#include "platform/codecs/png/Checksum.h"

#include <libdeflate.h>

namespace veltrane::codecs::png {

std::uint32_t ChecksumOf(Bytes typeAndData) noexcept
{
    return libdeflate_crc32(0, typeAndData.data(), typeAndData.size());
}

} // namespace veltrane::codecs::png
