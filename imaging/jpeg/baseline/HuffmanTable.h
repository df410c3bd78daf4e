#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "imaging/jpeg/baseline/Frame.h"

namespace veltrane::imaging::jpeg::baseline {

/// An entry of the lookup table: how many bits the code and its additional bits take, how far the coefficient
/// index advances (the run of zeros and the coefficient itself), and the coefficient. Most codes are short
/// enough for one lookup to give all three.
class HuffmanEntry {
public:
    static constexpr unsigned kEndOfBlock
        = 128; ///< an advance: the block's other coefficients are zero (EOB)

    constexpr HuffmanEntry() = default;
    constexpr HuffmanEntry(unsigned bits, unsigned advance, int coefficient)
        : packed(static_cast<std::uint32_t>(coefficient) << 16 | advance << 8 | bits)
    {
    }

    /// The code fits the table, its additional bits do not. `size` is the category: the number of those bits.
    [[nodiscard]] static constexpr HuffmanEntry Incomplete(unsigned bits, unsigned advance, unsigned size)
    {
        return { bits | kIncomplete, advance, static_cast<int>(size) };
    }

    /// An invalid code, or one that is longer than the table's index.
    [[nodiscard]] static constexpr HuffmanEntry Invalid() { return { kIncomplete, 0, 0 }; }

    [[nodiscard]] constexpr bool IsIncomplete() const noexcept { return (packed & kIncomplete) != 0; }
    [[nodiscard]] constexpr bool IsInvalid() const noexcept { return packed == kIncomplete; }
    [[nodiscard]] constexpr unsigned Bits() const noexcept { return packed & 63; }
    [[nodiscard]] constexpr unsigned Advance() const noexcept { return packed >> 8 & 0xFF; }
    [[nodiscard]] constexpr std::int16_t Coefficient() const noexcept
    {
        return static_cast<std::int16_t>(packed >> 16);
    }

private:
    static constexpr unsigned kIncomplete = 1 << 7;

    std::uint32_t packed = kIncomplete;
};

/// A Huffman table for decoding, whose entries include the additional bits. Source: T.81, F.2.2.
class HuffmanTable {
public:
    static constexpr unsigned kLookUpBits = 10;

    enum class Kind { Dc, Ac };

    HuffmanTable(const HuffmanSpec& list, Kind kind);

    /// Whether the specification is that of a prefix code and all its symbols are possible.
    [[nodiscard]] bool Valid() const noexcept { return valid; }

    /// The entry for the first bits of `bits`, the first one in the highest place; 31 or more must be valid.
    /// Invalid when they are no code.
    [[nodiscard]] HuffmanEntry Find(std::uint64_t bits) const noexcept
    {
        const HuffmanEntry entry = LookUp(bits);
        return entry.IsIncomplete() ? Complete(entry, bits) : entry;
    }
    [[nodiscard]] HuffmanEntry LookUp(std::uint64_t bits) const noexcept
    {
        return entries[bits >> (64 - kLookUpBits)];
    }
    [[nodiscard]] HuffmanEntry Complete(HuffmanEntry incomplete, std::uint64_t bits) const noexcept;

private:
    [[nodiscard]] HuffmanEntry EntryFor(unsigned symbol, unsigned length) const noexcept;
    [[nodiscard]] HuffmanEntry Long(std::uint64_t bits) const noexcept;
    void Fill(std::uint32_t code, unsigned length, HuffmanEntry incomplete) noexcept;

    struct Length {
        std::uint32_t end = 0; ///< one past the last code, left-aligned to 16 bits
        std::uint32_t first = 0; ///< the first code
        std::size_t at = 0; ///< index of that code's symbol
    };

    Kind kind;
    bool valid = true;
    std::array<HuffmanEntry, 1 << kLookUpBits> entries {};
    std::array<Length, 17> lengths {};
    std::array<std::uint8_t, 256> symbols;
};

} // namespace veltrane::imaging::jpeg::baseline
