#pragma once

#include <array>
#include <cstdint>

namespace veltrane::imaging::jpeg {

/// How often each symbol of the Huffman codes occurs. Source: T.81, F.1.2.
struct Counts {
    std::array<std::uint32_t, 256> dc {}; ///< categories of DC differences
    std::array<std::uint32_t, 256> ac {}; ///< zero run and category of AC coefficients

    /// Counts a block of quantised coefficients, rows of eight. `dcBefore`: the DC coefficient of the block
    /// before it in the same component.
    void Add(const std::int16_t* block, int dcBefore) noexcept;
};

/// A Huffman table as a file specifies it. Source: T.81, B.2.4.2.
struct Table {
    std::array<std::uint8_t, 17> codes {}; ///< BITS: how many there are of each length in bits, from 1 on
    std::array<std::uint8_t, 256> symbols {}; ///< HUFFVAL: in the order of their codes
};

/// The tables of luma and of chroma.
struct Tables {
    struct Pair {
        Table dc, ac;
    };
    std::array<Pair, 2> of;
};

/// The best code for `counts`, which come from a sample. Every symbol that an 8-bit picture of any quality
/// can contain gets a code.
[[nodiscard]] Tables::Pair TablesFor(const Counts& counts);

} // namespace veltrane::imaging::jpeg
