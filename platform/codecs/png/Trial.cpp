#include "platform/codecs/png/Trial.h"

namespace veltrane::codecs::png {

std::uint64_t Trial::BitsOf(Bytes bytes, Likeness likeness, const Layout& layout)
{
    std::uint64_t bits = 0;
    for (std::size_t at = 0; at < bytes.size();) {
        at = search.Cut(bytes.data(), origin, at, bytes.size(), likeness, layout, block);
        bits += BlockBits(block);
    }
    origin += static_cast<std::uint32_t>(bytes.size() + kWindow);
    return bits;
}

} // namespace veltrane::codecs::png
