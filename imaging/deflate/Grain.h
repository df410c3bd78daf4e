#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/deflate/Block.h"
#include "imaging/deflate/Layout.h"

namespace veltrane::imaging {

/// Finds repeated pixels in what prediction left of a photograph with little colour or much grain. Looks at
/// one candidate for each pixel, and takes only what is shorter than its literals would be.
class GrainFinder {
public:
    static constexpr int kHashBits = 14;
    using Heads = std::vector<std::uint16_t>; ///< for each hash the last position, its low bits

    GrainFinder();

    /// Cuts bytes [from, to) of `data`, whole rows, into literals and matches and counts them in `block`,
    /// which is cleared first. `data` holds the stream from `origin` on (a position in the stream).
    void Cut(const std::uint8_t* data, std::uint32_t origin, std::size_t from, std::size_t to,
        const Layout& layout, Block& block);

private:
    Heads heads;
};

} // namespace veltrane::imaging
