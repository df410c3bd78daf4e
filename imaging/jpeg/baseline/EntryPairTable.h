#pragma once

#include <array>
#include <cstdint>

#include "imaging/jpeg/baseline/HuffmanTable.h"

namespace veltrane::imaging::jpeg::baseline {

/// Two coefficients that one lookup gives where both codes are short; else one coefficient, which is written
/// twice to the same index.
class EntryPair {
public:
    constexpr EntryPair() = default;
    constexpr explicit EntryPair(HuffmanEntry one) : EntryPair(one, HuffmanEntry(0, 0, one.Coefficient())) { }
    constexpr EntryPair(HuffmanEntry first, HuffmanEntry second)
        : packed(std::uint64_t { static_cast<std::uint16_t>(second.Coefficient()) } << 48
            | std::uint64_t { static_cast<std::uint16_t>(first.Coefficient()) } << 32
            | std::uint64_t { second.Advance() } << 24 | std::uint64_t { first.Advance() } << 16
            | std::uint64_t { first.Bits() } << 8 | (first.Bits() + second.Bits()))
    {
    }

    /// Whether the Huffman table itself must be asked.
    [[nodiscard]] constexpr bool IsIncomplete() const noexcept { return packed == 0; }
    [[nodiscard]] constexpr unsigned Bits() const noexcept { return packed & 63; } ///< of both
    [[nodiscard]] constexpr unsigned FirstBits() const noexcept { return packed >> 8 & 63; }
    [[nodiscard]] constexpr unsigned FirstAdvance() const noexcept { return packed >> 16 & 0xFF; }
    [[nodiscard]] constexpr unsigned SecondAdvance() const noexcept { return packed >> 24 & 0xFF; }
    [[nodiscard]] constexpr std::int16_t FirstCoefficient() const noexcept
    {
        return static_cast<std::int16_t>(packed >> 32);
    }
    [[nodiscard]] constexpr std::int16_t SecondCoefficient() const noexcept
    {
        return static_cast<std::int16_t>(packed >> 48);
    }

private:
    std::uint64_t packed = 0;
};

/// A table of AC coefficients that gives two for one lookup: each lookup waits for the one before it, so
/// fewer lookups take less time.
class EntryPairTable {
public:
    explicit EntryPairTable(const HuffmanTable& table)
    {
        constexpr unsigned kBits = HuffmanTable::kLookUpBits;
        for (std::uint64_t i = 0; i < pairs.size(); ++i) {
            const std::uint64_t bits = i << (64 - kBits);
            const HuffmanEntry first = table.LookUp(bits), second = table.LookUp(bits << first.Bits());
            const bool two = !second.IsIncomplete() && first.Advance() != HuffmanEntry::kEndOfBlock
                && first.Bits() + second.Bits() <= kBits;
            if (!first.IsIncomplete())
                pairs[i] = two ? EntryPair(first, second) : EntryPair(first);
        }
    }

    [[nodiscard]] EntryPair LookUp(std::uint64_t bits) const noexcept
    {
        return pairs[bits >> (64 - HuffmanTable::kLookUpBits)];
    }

private:
    std::array<EntryPair, 1 << HuffmanTable::kLookUpBits> pairs {};
};

} // namespace veltrane::imaging::jpeg::baseline
