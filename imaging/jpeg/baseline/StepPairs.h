#pragma once

#include <array>
#include <cstdint>

#include "imaging/jpeg/baseline/CodeTable.h"

namespace veltrane::imaging::jpeg::baseline {

/// Two coefficients' steps that are told by one look, where both are short; else one, twice the same place.
class StepPair {
public:
    constexpr StepPair() = default;
    constexpr explicit StepPair(Step one) : StepPair(one, Step(0, 0, one.Value())) { }
    constexpr StepPair(Step first, Step second)
        : packed(std::uint64_t { static_cast<std::uint16_t>(second.Value()) } << 48
            | std::uint64_t { static_cast<std::uint16_t>(first.Value()) } << 32
            | std::uint64_t { second.Further() } << 24 | std::uint64_t { first.Further() } << 16
            | std::uint64_t { first.Bits() } << 8 | (first.Bits() + second.Bits()))
    {
    }

    /// Whether a step has to be looked for in another way.
    [[nodiscard]] constexpr bool IsOpen() const noexcept { return packed == 0; }
    [[nodiscard]] constexpr unsigned Bits() const noexcept { return packed & 63; } ///< of both
    [[nodiscard]] constexpr unsigned FirstBits() const noexcept { return packed >> 8 & 63; }
    [[nodiscard]] constexpr unsigned FirstFurther() const noexcept { return packed >> 16 & 0xFF; }
    [[nodiscard]] constexpr unsigned SecondFurther() const noexcept { return packed >> 24 & 0xFF; }
    [[nodiscard]] constexpr std::int16_t FirstValue() const noexcept
    {
        return static_cast<std::int16_t>(packed >> 32);
    }
    [[nodiscard]] constexpr std::int16_t SecondValue() const noexcept
    {
        return static_cast<std::int16_t>(packed >> 48);
    }

private:
    std::uint64_t packed = 0;
};

/// A table of coefficients, two at a time: each look has to wait for the one before, so fewer of them take
/// less time.
class StepPairs {
public:
    explicit StepPairs(const CodeTable& table)
    {
        constexpr unsigned kBits = CodeTable::kLookUpBits;
        for (std::uint64_t i = 0; i < pairs.size(); ++i) {
            const std::uint64_t bits = i << (64 - kBits);
            const Step first = table.Look(bits), second = table.Look(bits << first.Bits());
            const bool two = !second.IsOpen() && first.Further() != Step::kToEnd
                && first.Bits() + second.Bits() <= kBits;
            if (!first.IsOpen())
                pairs[i] = two ? StepPair(first, second) : StepPair(first);
        }
    }

    [[nodiscard]] StepPair Look(std::uint64_t bits) const noexcept
    {
        return pairs[bits >> (64 - CodeTable::kLookUpBits)];
    }

private:
    std::array<StepPair, 1 << CodeTable::kLookUpBits> pairs {};
};

} // namespace veltrane::imaging::jpeg::baseline
