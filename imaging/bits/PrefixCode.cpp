#include "imaging/bits/PrefixCode.h"

#include <algorithm>
#include <array>

namespace veltrane::imaging {

namespace {

constexpr std::size_t kMostSymbols = 288;

struct Symbol {
    std::uint32_t frequency;
    std::uint16_t number;
};

using Symbols = std::array<Symbol, kMostSymbols>;

// The symbols that occur, rarest first; the number of them.
std::size_t Sorted(std::span<const std::uint32_t> frequencies, Symbols& symbols)
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < frequencies.size(); ++i) {
        if (frequencies[i] != 0)
            symbols[count++] = { frequencies[i], static_cast<std::uint16_t>(i) };
    }
    for (std::uint16_t i = 0; count < 2; ++i) {
        if (frequencies[i] == 0)
            symbols[count++] = { 1, i };
    }
    std::sort(symbols.begin(), symbols.begin() + static_cast<std::ptrdiff_t>(count),
        [](const Symbol& a, const Symbol& b) {
            return a.frequency != b.frequency ? a.frequency < b.frequency : a.number < b.number;
        });
    return count;
}

// How many leaves lie at each depth of the tree that joins the two rarest nodes again and again. With the
// leaves sorted, the joined nodes come out sorted too: two queues, and no heap.
std::array<std::uint32_t, 64> CountByDepth(const Symbols& symbols, std::size_t count)
{
    struct Node {
        std::uint64_t weight;
        std::size_t parent;
    };
    std::array<Node, 2 * kMostSymbols> nodes;
    for (std::size_t i = 0; i < count; ++i)
        nodes[i].weight = symbols[i].frequency;
    std::size_t leaf = 0, joined = count, end = count;
    const auto rarest = [&] {
        const bool takeLeaf = leaf < count && (joined == end || nodes[leaf].weight <= nodes[joined].weight);
        return takeLeaf ? leaf++ : joined++;
    };
    for (; end < 2 * count - 1; ++end) {
        const std::size_t a = rarest(), b = rarest();
        nodes[end].weight = nodes[a].weight + nodes[b].weight;
        nodes[a].parent = nodes[b].parent = end;
    }
    std::array<std::uint32_t, 64> counts {};
    std::array<std::uint8_t, 2 * kMostSymbols> depth;
    depth[end - 1] = 0;
    for (std::size_t i = end - 1; i-- > 0;) {
        depth[i] = static_cast<std::uint8_t>(depth[nodes[i].parent] + 1);
        if (i < count)
            ++counts[depth[i]];
    }
    return counts;
}

// Lifts the leaves that lie too deep to `longest`, then pushes others down until the code fits again.
void Limit(std::array<std::uint32_t, 64>& counts, unsigned longest)
{
    std::uint64_t used = 0; // in units of 2^-longest of the code space
    for (unsigned bits = 1; bits < counts.size(); ++bits) {
        if (bits > longest) {
            counts[longest] += counts[bits];
            used += counts[bits];
        } else {
            used += std::uint64_t { counts[bits] } << (longest - bits);
        }
    }
    for (; used > std::uint64_t { 1 } << longest; --used) {
        unsigned bits = longest - 1;
        while (counts[bits] == 0)
            --bits;
        --counts[bits];
        counts[bits + 1] += 2;
        --counts[longest];
    }
}

} // namespace

void BuildLengths(
    std::span<const std::uint32_t> frequencies, unsigned longest, std::span<std::uint8_t> lengths)
{
    Symbols symbols;
    const std::size_t count = Sorted(frequencies, symbols);
    std::array<std::uint32_t, 64> counts = CountByDepth(symbols, count);
    Limit(counts, longest);
    std::fill(lengths.begin(), lengths.end(), std::uint8_t { 0 });
    std::size_t next = 0;
    for (unsigned bits = longest; bits > 0; --bits) {
        for (std::uint32_t i = 0; i < counts[bits]; ++i)
            lengths[symbols[next++].number] = static_cast<std::uint8_t>(bits);
    }
}

} // namespace veltrane::imaging
