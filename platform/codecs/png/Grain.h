#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/codecs/png/Block.h"

namespace veltrane::codecs::png {

/// Finds repeated pixels in what prediction left of a photograph with little colour or much grain. Looks at
/// one candidate for each pixel, and takes only what is shorter than its literals would be.
class GrainFinder {
public:
    GrainFinder();

    /// Cuts bytes [from, to) of `data` into literals and matches and counts them in `block`, which is cleared
    /// first. `data` holds the stream from `origin` on (a position in the stream). A pixel takes `step`
    /// bytes.
    void Cut(const std::uint8_t* data, std::uint32_t origin, std::size_t from, std::size_t to,
        std::size_t step, Block& block);

private:
    static constexpr int kHashBits = 14;
    using LeastLengths = std::array<unsigned, 16>; ///< worth a match, by the width of its distance

    [[nodiscard]] static LeastLengths WorthTaking(Bytes bytes);
    [[nodiscard]] std::uint32_t& HeadOf(const std::uint8_t* at) noexcept;
    [[nodiscard]] unsigned Look(const std::uint8_t* here, std::uint32_t position, std::size_t reach,
        std::size_t most, unsigned& distance) noexcept;

    std::vector<std::uint32_t> heads;
};

} // namespace veltrane::codecs::png
