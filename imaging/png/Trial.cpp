#include "imaging/png/Trial.h"

namespace veltrane::imaging::png {

std::uint64_t Trial::BitsOf(Bytes bytes, std::size_t known, Likeness likeness, const Layout& layout)
{
    if (likeness != Likeness::Residues) // whose runs do not depend on what came before
        (void)Cut(bytes.first(known), 0, likeness, layout);
    const std::uint64_t bits = Cut(bytes, known, likeness, layout);
    origin += static_cast<std::uint32_t>(bytes.size() + kWindow);
    return bits;
}

std::uint64_t Trial::Cut(Bytes bytes, std::size_t from, Likeness likeness, const Layout& layout)
{
    std::uint64_t bits = 0;
    for (std::size_t at = from; at < bytes.size();) {
        at = search.Cut(bytes.data(), origin, at, bytes.size(), likeness, layout, block);
        bits += BlockBits(block);
    }
    return bits;
}

} // namespace veltrane::imaging::png
