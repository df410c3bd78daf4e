#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "imaging/jpeg/baseline/Frame.h"

namespace veltrane::imaging::jpeg::baseline {

/// What stands next in a scan: how many bits it takes, how many coefficients further it goes, and the value
/// that stands there. One load tells all three where code and value are short, which most are.
class Step {
public:
    static constexpr unsigned kToEnd = 128; ///< coefficients further: all others of the block are zero

    constexpr Step() = default;
    constexpr Step(unsigned bits, unsigned further, int value)
        : packed(static_cast<std::uint32_t>(value) << 16 | further << 8 | bits)
    {
    }

    /// A code that stands alone in the table: its value's bits follow.
    [[nodiscard]] static constexpr Step Open(unsigned bits, unsigned further, unsigned size)
    {
        return { bits | kIsOpen, further, static_cast<int>(size) };
    }

    /// What is no code, or longer than the table knows.
    [[nodiscard]] static constexpr Step Unknown() { return { kIsOpen, 0, 0 }; }

    [[nodiscard]] constexpr bool IsOpen() const noexcept { return (packed & kIsOpen) != 0; }
    [[nodiscard]] constexpr bool IsUnknown() const noexcept { return packed == kIsOpen; }
    [[nodiscard]] constexpr unsigned Bits() const noexcept { return packed & 63; }
    [[nodiscard]] constexpr unsigned Further() const noexcept { return packed >> 8 & 0xFF; }
    [[nodiscard]] constexpr std::int16_t Value() const noexcept
    {
        return static_cast<std::int16_t>(packed >> 16);
    }

private:
    static constexpr unsigned kIsOpen = 1 << 7;

    std::uint32_t packed = kIsOpen;
};

/// A Huffman table made for decoding, with the values behind the codes. Source: T.81, F.2.2.
class CodeTable {
public:
    static constexpr unsigned kLookUpBits = 10;

    enum class Of { Differences, Coefficients };

    CodeTable(const CodeList& list, Of kind);

    /// Whether the list is that of a prefix code, and its symbols can be.
    [[nodiscard]] bool Valid() const noexcept { return valid; }

    /// The step at the front of `bits`, the first one highest, of which 31 or more have to be there. Unknown
    /// for what is no code.
    [[nodiscard]] Step Next(std::uint64_t bits) const noexcept
    {
        const Step step = Look(bits);
        return step.IsOpen() ? Complete(step, bits) : step;
    }
    [[nodiscard]] Step Look(std::uint64_t bits) const noexcept { return steps[bits >> (64 - kLookUpBits)]; }
    [[nodiscard]] Step Complete(Step open, std::uint64_t bits) const noexcept;

private:
    [[nodiscard]] Step StepOf(unsigned symbol, unsigned length) const noexcept;
    [[nodiscard]] Step Long(std::uint64_t bits) const noexcept;
    void Fill(std::uint32_t code, unsigned length, Step open) noexcept;

    struct Length {
        std::uint32_t end = 0; ///< behind the last code, as 16 bits from the top
        std::uint32_t first = 0; ///< the first code
        std::size_t at = 0; ///< where its symbol stands
    };

    Of kind;
    bool valid = true;
    std::array<Step, 1 << kLookUpBits> steps {};
    std::array<Length, 17> lengths {};
    std::array<std::uint8_t, 256> symbols;
};

} // namespace veltrane::imaging::jpeg::baseline
