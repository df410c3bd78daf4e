#include "platform/codecs/png/Trial.h"

#include "platform/codecs/png/Runs.h"

namespace veltrane::codecs::png {

std::uint64_t Trial::BitsOf(Bytes bytes, Likeness likeness, std::size_t step)
{
    if (likeness == Likeness::Residues) {
        FindRuns(bytes, block);
        return BlockBits(block);
    }
    std::uint64_t bits = 0;
    for (std::size_t at = 0; at < bytes.size();) {
        at = finder.Cut(bytes.data(), origin, at, bytes.size(), step, block);
        bits += BlockBits(block);
    }
    origin += static_cast<std::uint32_t>(bytes.size() + kWindow);
    return bits;
}

} // namespace veltrane::codecs::png
