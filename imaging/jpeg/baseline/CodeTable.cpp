#include "imaging/jpeg/baseline/CodeTable.h"

namespace veltrane::imaging::jpeg::baseline {

namespace {

constexpr unsigned kLongest = 16; // bits of a code
constexpr unsigned kMostValueBits = 15;

// A value's bits tell its size's lower half as negative numbers: T.81, F.2.2.1.
constexpr int Extended(std::uint32_t bits, unsigned size)
{
    const auto value = static_cast<int>(bits);
    return size == 0 || bits >> (size - 1) != 0 ? value : value - (1 << size) + 1;
}

} // namespace

CodeTable::CodeTable(const CodeList& list, Of kind) : kind(kind), symbols(list.symbols)
{
    std::uint32_t code = 0;
    std::size_t at = 0;
    for (unsigned length = 1; length <= kLongest; ++length, code <<= 1) {
        lengths[length].first = code;
        lengths[length].at = at;
        for (unsigned i = 0; i < list.counts[length] && valid; ++i, ++code, ++at) {
            valid = code >> length == 0 && at < symbols.size()
                && (kind == Of::Coefficients || symbols[at] <= kMostValueBits);
            if (valid && length <= kLookUpBits)
                Fill(code, length, StepOf(symbols[at], length));
        }
        lengths[length].end = code << (kLongest - length);
    }
}

// A coefficient's symbol tells how many zeros stand before it and how many bits it has; one without bits
// ends the block, but for the one that stands for sixteen zeros: T.81, F.1.2.2.1.
Step CodeTable::StepOf(unsigned symbol, unsigned length) const noexcept
{
    constexpr unsigned kSixteenZeros = 0xF0;
    if (kind == Of::Differences)
        return Step::Open(length, 1, symbol);
    const unsigned size = symbol & 15;
    if (size == 0 && symbol != kSixteenZeros)
        return Step::Open(length, Step::kToEnd, 0);
    return Step::Open(length, (symbol >> 4) + 1, size);
}

void CodeTable::Fill(std::uint32_t code, unsigned length, Step open) noexcept
{
    const unsigned free = kLookUpBits - length;
    const auto size = static_cast<unsigned>(open.Value());
    for (std::uint32_t rest = 0; rest >> free == 0; ++rest) {
        const std::uint32_t place = code << free | rest;
        steps[place]
            = size > free ? open : Step(length + size, open.Further(), Extended(rest >> (free - size), size));
    }
}

Step CodeTable::Long(std::uint64_t bits) const noexcept
{
    const auto front = static_cast<std::uint32_t>(bits >> (64 - kLongest));
    for (unsigned length = kLookUpBits + 1; length <= kLongest; ++length) {
        const Length& known = lengths[length];
        if (front < known.end)
            return StepOf(symbols[known.at + (front >> (kLongest - length)) - known.first], length);
    }
    return Step::Unknown();
}

Step CodeTable::Complete(Step open, std::uint64_t bits) const noexcept
{
    if (open.IsUnknown())
        open = Long(bits);
    if (open.IsUnknown())
        return open;
    const auto size = static_cast<unsigned>(open.Value());
    const std::uint64_t behind = bits << open.Bits();
    const auto value = size == 0 ? 0U : static_cast<std::uint32_t>(behind >> (64 - size));
    return { open.Bits() + size, open.Further(), Extended(value, size) };
}

} // namespace veltrane::imaging::jpeg::baseline
