#include "imaging/jpeg/baseline/HuffmanTable.h"

namespace veltrane::imaging::jpeg::baseline {

namespace {

constexpr unsigned kLongestCode = 16; // code, in bits
constexpr unsigned kLargestCategory = 15;

// The additional bits of category `size` as a number; those that begin with 0 are negative: T.81, F.2.2.1,
// procedure EXTEND.
constexpr int Extended(std::uint32_t bits, unsigned size)
{
    const auto value = static_cast<int>(bits);
    return size == 0 || bits >> (size - 1) != 0 ? value : value - (1 << size) + 1;
}

} // namespace

HuffmanTable::HuffmanTable(const HuffmanSpec& list, Kind kind) : kind(kind), symbols(list.symbols)
{
    std::uint32_t code = 0;
    std::size_t at = 0;
    for (unsigned length = 1; length <= kLongestCode; ++length, code <<= 1) {
        lengths[length].first = code;
        lengths[length].at = at;
        for (unsigned i = 0; i < list.counts[length] && valid; ++i, ++code, ++at) {
            valid = code >> length == 0 && at < symbols.size()
                && (kind == Kind::Ac || symbols[at] <= kLargestCategory);
            if (valid && length <= kLookUpBits)
                Fill(code, length, EntryFor(symbols[at], length));
        }
        lengths[length].end = code << (kLongestCode - length);
    }
}

// An AC symbol RRRRSSSS is a run of zeros and a category. Category 0 ends the block, except in ZRL, a run of
// sixteen zeros: T.81, F.1.2.2.1.
HuffmanEntry HuffmanTable::EntryFor(unsigned symbol, unsigned length) const noexcept
{
    constexpr unsigned kZrl = 0xF0;
    if (kind == Kind::Dc)
        return HuffmanEntry::Incomplete(length, 1, symbol);
    const unsigned size = symbol & 15;
    if (size == 0 && symbol != kZrl)
        return HuffmanEntry::Incomplete(length, HuffmanEntry::kEndOfBlock, 0);
    return HuffmanEntry::Incomplete(length, (symbol >> 4) + 1, size);
}

void HuffmanTable::Fill(std::uint32_t code, unsigned length, HuffmanEntry entry) noexcept
{
    const unsigned free = kLookUpBits - length;
    const auto size = static_cast<unsigned>(entry.Coefficient());
    for (std::uint32_t rest = 0; rest >> free == 0; ++rest) {
        const std::uint32_t place = code << free | rest;
        entries[place] = size > free
            ? entry
            : HuffmanEntry(length + size, entry.Advance(), Extended(rest >> (free - size), size));
    }
}

HuffmanEntry HuffmanTable::Long(std::uint64_t bits) const noexcept
{
    const auto front = static_cast<std::uint32_t>(bits >> (64 - kLongestCode));
    for (unsigned length = kLookUpBits + 1; length <= kLongestCode; ++length) {
        const Length& known = lengths[length];
        if (front < known.end)
            return EntryFor(symbols[known.at + (front >> (kLongestCode - length)) - known.first], length);
    }
    return HuffmanEntry::Invalid();
}

HuffmanEntry HuffmanTable::Complete(HuffmanEntry entry, std::uint64_t bits) const noexcept
{
    if (entry.IsInvalid())
        entry = Long(bits);
    if (entry.IsInvalid())
        return entry;
    const auto size = static_cast<unsigned>(entry.Coefficient());
    const std::uint64_t additional = bits << entry.Bits();
    const auto value = size == 0 ? 0U : static_cast<std::uint32_t>(additional >> (64 - size));
    return { entry.Bits() + size, entry.Advance(), Extended(value, size) };
}

} // namespace veltrane::imaging::jpeg::baseline
