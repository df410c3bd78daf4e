#pragma once

#include <array>
#include <cstdint>

namespace veltrane::imaging::jpeg {

/// How often each symbol of the entropy code occurs. Source: T.81, F.1.2.
struct Counts {
    std::array<std::uint32_t, 256> dc {}; ///< categories of the differences of mean values
    std::array<std::uint32_t, 256> ac {}; ///< run of zeros and category of what ends it

    /// Counts a block of quantised coefficients, rows of eight. `dcBefore`: the block before it, of the same
    /// component.
    void Add(const std::int16_t* block, int dcBefore) noexcept;
};

/// One code as a file defines it. Source: T.81, B.2.4.2.
struct Table {
    std::array<std::uint8_t, 17> codes {}; ///< how many there are of each length in bits, from 1 on
    std::array<std::uint8_t, 256> symbols {}; ///< by length
};

/// The codes of the components with brightness and of those with colour.
struct Tables {
    struct Pair {
        Table dc, ac;
    };
    std::array<Pair, 2> of;
};

/// The code that suits `counts`, of which each stands for several times the same. Every symbol that 8-bit
/// pictures of any quality can come to gets a code, so that it codes any picture.
[[nodiscard]] Tables::Pair TablesFor(const Counts& counts);

} // namespace veltrane::imaging::jpeg
