#include "imaging/bits/ByteReader.h"

#include "imaging/Fault.h"

namespace veltrane::imaging {

Bytes ByteReader::Take(std::size_t count)
{
    if (count > Remaining())
        throw Fault(Fault::Incomplete);
    const Bytes taken = bytes.subspan(position, count);
    position += count;
    return taken;
}

void ByteReader::Seek(std::size_t offset)
{
    if (offset > bytes.size())
        throw Fault(Fault::Incomplete);
    position = offset;
}

std::uint32_t ByteReader::Number(std::size_t width)
{
    const Bytes digits = Take(width);
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < width; ++i)
        value = value << 8 | digits[order == std::endian::big ? i : width - 1 - i];
    return value;
}

} // namespace veltrane::imaging
