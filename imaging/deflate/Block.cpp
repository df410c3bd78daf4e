#include "imaging/deflate/Block.h"

#include <algorithm>
#include <bit>

#include "imaging/bits/PrefixCode.h"
#include "imaging/bits/Processor.h"
#include "imaging/deflate/Huffman.h"

namespace veltrane::imaging {

namespace {

constexpr std::size_t kEndOfBlock = 256;

// A number's symbol and what is written behind it. Source: RFC 1951, 3.2.5.
struct Slot {
    std::uint16_t symbol;
    std::uint8_t extraBits;
    std::uint16_t base;
};

constexpr std::array<Slot, kLongestMatch + 1> MakeLengthSlots()
{
    std::array<Slot, kLongestMatch + 1> slots {};
    unsigned length = 3;
    for (std::uint16_t symbol = 257; symbol < 285; ++symbol) {
        const unsigned extra = symbol < 265 ? 0 : (symbol - 261U) / 4;
        for (unsigned i = 0, base = length; i < 1U << extra && length < kLongestMatch; ++i, ++length)
            slots[length] = { symbol, static_cast<std::uint8_t>(extra), static_cast<std::uint16_t>(base) };
    }
    slots[kLongestMatch] = { 285, 0, kLongestMatch };
    return slots;
}
constexpr auto kLengthSlots = MakeLengthSlots();

// `distance` is the distance less 1.
[[gnu::always_inline]] inline Slot DistanceSlot(unsigned distance) noexcept
{
    const auto extra = static_cast<unsigned>(std::bit_width(distance | 2)) - 2;
    const unsigned upper = distance >> extra;
    return { static_cast<std::uint16_t>(2 * extra + upper), static_cast<std::uint8_t>(extra),
        static_cast<std::uint16_t>(upper << extra) };
}

unsigned DistanceExtraBits(std::size_t symbol) noexcept
{
    return symbol < 4 ? 0 : static_cast<unsigned>(symbol) / 2 - 1;
}

unsigned LengthExtraBits(std::size_t symbol) noexcept
{
    return symbol < 265 || symbol == 285 ? 0 : (static_cast<unsigned>(symbol) - 261) / 4;
}

struct Code {
    std::array<std::uint8_t, 288> literalLengths {}; // the fixed code knows two more
    std::array<std::uint16_t, 288> literalCodes {};
    std::array<std::uint8_t, 32> distanceLengths {};
    std::array<std::uint16_t, 32> distanceCodes {};

    void Assign()
    {
        AssignCodes(literalLengths, literalCodes);
        AssignCodes(distanceLengths, distanceCodes);
    }

    // Bits for all of the block's symbols, extra bits included.
    [[nodiscard]] std::uint64_t Cost(const Block& block) const noexcept
    {
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < kLiteralSymbols; ++i)
            bits += std::uint64_t { block.literals[i] } * (literalLengths[i] + LengthExtraBits(i));
        for (std::size_t i = 0; i < kDistanceSymbols; ++i)
            bits += std::uint64_t { block.distances[i] } * (distanceLengths[i] + DistanceExtraBits(i));
        return bits;
    }
};

Code MakeFixed()
{
    Code code;
    for (std::size_t i = 0; i < code.literalLengths.size(); ++i)
        code.literalLengths[i] = i < 144 ? 8 : i < 256 ? 9 : i < 280 ? 7 : 8;
    code.distanceLengths.fill(5);
    code.Assign();
    return code;
}

Code MakeDynamic(const Block& block)
{
    Code code;
    BuildLengths(block.literals, 14, std::span(code.literalLengths).first(kLiteralSymbols));
    BuildLengths(block.distances, 14, std::span(code.distanceLengths).first(kDistanceSymbols));
    code.Assign();
    return code;
}

// How a dynamic block tells its code: the lengths, runs shortened, in a code of their own.
// Source: RFC 1951, 3.2.7.
class CodeHeader {
public:
    explicit CodeHeader(const Code& code)
    {
        literals = Used(code.literalLengths, kLiteralSymbols, 257);
        distances = Used(code.distanceLengths, kDistanceSymbols, 1);
        std::array<std::uint8_t, kLiteralSymbols + kDistanceSymbols> all {};
        const auto end = std::copy_n(code.literalLengths.begin(), literals, all.begin());
        std::copy_n(code.distanceLengths.begin(), distances, end);
        Shorten(std::span(all).first(literals + distances));
        BuildLengths(counts, 7, lengths);
        AssignCodes(lengths, codes);
        used = lengths.size();
        while (used > 4 && lengths[kOrder[used - 1]] == 0)
            --used;
    }

    [[nodiscard]] std::uint64_t Bits() const noexcept
    {
        std::uint64_t bits = 14 + 3 * used;
        for (std::size_t i = 0; i < itemCount; ++i)
            bits += std::uint64_t { lengths[items[i].symbol] } + items[i].extraBits;
        return bits;
    }

    void Write(BitWriter& to) const
    {
        to.Put(literals - 257, 5);
        to.Put(distances - 1, 5);
        to.Put(used - 4, 4);
        to.Flush();
        for (std::size_t i = 0; i < used; ++i) {
            to.Put(lengths[kOrder[i]], 3);
            to.Flush();
        }
        for (const Item& item : std::span(items).first(itemCount)) {
            to.Put(codes[item.symbol], lengths[item.symbol]);
            to.Put(item.extra, item.extraBits);
            to.Flush();
        }
    }

private:
    struct Item {
        std::uint8_t symbol, extraBits, extra;
    };
    static constexpr std::array<std::uint8_t, 19> kOrder { 16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13,
        2, 14, 1, 15 };

    static std::size_t Used(std::span<const std::uint8_t> of, std::size_t most, std::size_t least)
    {
        while (most > least && of[most - 1] == 0)
            --most;
        return most;
    }

    void Add(std::size_t symbol, unsigned extraBits = 0, std::size_t extra = 0)
    {
        ++counts[symbol];
        items[itemCount++] = { static_cast<std::uint8_t>(symbol), static_cast<std::uint8_t>(extraBits),
            static_cast<std::uint8_t>(extra) };
    }

    void Shorten(std::span<const std::uint8_t> all)
    {
        for (std::size_t i = 0; i < all.size();) {
            std::size_t run = 1;
            while (i + run < all.size() && all[i + run] == all[i])
                ++run;
            i += run;
            if (all[i - 1] == 0) {
                for (; run >= 11; run -= std::min<std::size_t>(run, 138))
                    Add(18, 7, std::min<std::size_t>(run, 138) - 11);
                if (run >= 3) {
                    Add(17, 3, run - 3);
                    run = 0;
                }
            } else {
                Add(all[i - 1]);
                for (--run; run >= 3; run -= std::min<std::size_t>(run, 6))
                    Add(16, 2, std::min<std::size_t>(run, 6) - 3);
            }
            for (; run > 0; --run)
                Add(all[i - 1]);
        }
    }

    std::size_t literals = 0, distances = 0, used = 0, itemCount = 0;
    std::array<Item, kLiteralSymbols + kDistanceSymbols> items;
    std::array<std::uint32_t, 19> counts {};
    std::array<std::uint8_t, 19> lengths {};
    std::array<std::uint16_t, 19> codes {};
};

// What is written for a byte, a length or a distance, as WriteAll wants it.
struct Entries {
    explicit Entries(const Code& code)
    {
        std::copy_n(code.literalCodes.begin(), codes.size(), codes.begin());
        std::copy_n(code.literalLengths.begin(), lengths.size(), lengths.begin());
        for (unsigned i = 0; i < kDistanceSymbols; ++i)
            distances[i] = { code.distanceCodes[i], code.distanceLengths[i] };
        for (unsigned i = 3; i <= kLongestMatch; ++i) {
            const Slot& slot = kLengthSlots[i];
            const unsigned bits = code.literalLengths[slot.symbol];
            matches[i] = { code.literalCodes[slot.symbol] | (i - slot.base) << bits, bits + slot.extraBits };
        }
    }

    struct Piece {
        std::uint32_t bits, count;
    };
    // Of literals side by side, 1.3 KiB: two loads cost less than taking one number apart.
    std::array<std::uint32_t, 256> codes;
    std::array<std::uint8_t, 256> lengths;
    std::array<Piece, kDistanceSymbols> distances; // without extra bits
    std::array<Piece, kLongestMatch + 1> matches; // with extra bits, by the length
};

// Two codes are joined before they meet the stream: the chain of shifts through it is half as long.
[[gnu::always_inline]] inline void WriteLiterals(
    BitWriter& to, const Entries& entries, const std::uint8_t* bytes, std::size_t count)
{
    const auto pair = [&](std::size_t i, unsigned& bits) {
        const std::uint8_t a = bytes[i], b = bytes[i + 1];
        bits = static_cast<unsigned>(entries.lengths[a]) + entries.lengths[b];
        return entries.codes[a] | std::uint64_t { entries.codes[b] } << entries.lengths[a];
    };
    for (; count >= 4; count -= 4, bytes += 4) {
        static_assert(3 * 14 + 14 <= BitWriter::kBetweenFlushes);
        unsigned first = 0, second = 0;
        const std::uint64_t low = pair(0, first), high = pair(2, second);
        to.Put(low | high << first, first + second);
        to.Flush();
    }
    for (; count > 0; --count, ++bytes) {
        to.Put(entries.codes[*bytes], entries.lengths[*bytes]);
        to.Flush();
    }
}

[[gnu::always_inline]] inline void WriteMatch(BitWriter& to, const Entries& entries, const Sequence& match)
{
    const Slot slot = DistanceSlot(match.distance);
    const Entries::Piece length = entries.matches[match.length], distance = entries.distances[slot.symbol];
    const std::uint64_t extra = match.distance - slot.base;
    to.Put(length.bits | (distance.bits | extra << distance.count) << length.count,
        length.count + distance.count + slot.extraBits);
    to.Flush();
}

[[gnu::always_inline]] inline void WriteAll(
    BitWriter& stream, const Code& code, const Block& block, const std::uint8_t* bytes)
{
    const Entries entries(code);
    BitWriter to = stream; // nobody else's memory, so that it lives in registers
    for (const Sequence& sequence : block.sequences) {
        WriteLiterals(to, entries, bytes, sequence.literals);
        bytes += sequence.literals + sequence.length;
        if (sequence.length != 0)
            WriteMatch(to, entries, sequence);
    }
    to.Put(code.literalCodes[kEndOfBlock], code.literalLengths[kEndOfBlock]);
    to.Flush();
    stream = to;
}

#ifdef __x86_64__
// The shifts of newer processors, a third of the older ones' steps.
[[gnu::target("bmi2")]] void WriteAllBmi2(
    BitWriter& to, const Code& code, const Block& block, const std::uint8_t* bytes)
{
    WriteAll(to, code, block, bytes);
}
#endif

void WriteSymbols(BitWriter& to, const Code& code, const Block& block, const std::uint8_t* bytes)
{
#ifdef __x86_64__
    if (HasBmi2())
        return WriteAllBmi2(to, code, block, bytes);
#endif
    WriteAll(to, code, block, bytes);
}

enum BlockType : unsigned { kStored = 0, kFixed = 1, kDynamic = 2 };

void Begin(BitWriter& to, BlockType type, bool last)
{
    to.Put((last ? 1U : 0U) | type << 1, 3);
    to.Flush();
}

constexpr std::size_t kMostStored = 65535;

std::uint64_t StoredBits(std::size_t bytes) noexcept
{
    return (bytes + (bytes / kMostStored + 1) * 5) * 8;
}

void WriteStored(BitWriter& to, Bytes bytes, bool last)
{
    do {
        const Bytes part = bytes.first(std::min(bytes.size(), kMostStored));
        bytes = bytes.subspan(part.size());
        Begin(to, kStored, last && bytes.empty());
        to.Align();
        to.Put(part.size(), 16);
        to.Put(~part.size() & 0xFFFF, 16);
        to.Flush();
        to.Copy(part.data(), part.size());
    } while (!bytes.empty());
}

[[gnu::always_inline]] inline void CountMatch(Block& in, const Sequence& match) noexcept
{
    ++in.literals[kLengthSlots[match.length].symbol];
    ++in.distances[DistanceSlot(match.distance).symbol];
}

} // namespace

void Block::Clear() noexcept
{
    sequences.clear();
    literals.fill(0);
    distances.fill(0);
    literals[kEndOfBlock] = 1;
}

void Block::AddMatch(std::uint32_t count, unsigned length, unsigned distance)
{
    sequences.push_back(
        { count, static_cast<std::uint16_t>(length), static_cast<std::uint16_t>(distance - 1) });
    CountMatch(*this, sequences.back());
}

void Block::AddMatches(std::span<const Sequence> matches)
{
    sequences.insert(sequences.end(), matches.begin(), matches.end());
    for (const Sequence& match : matches)
        CountMatch(*this, match);
}

void Block::AddEnd(std::uint32_t count)
{
    sequences.push_back({ count, 0, 0 });
}

std::uint64_t BlockBits(const Block& block)
{
    const Code code = MakeDynamic(block);
    return CodeHeader(code).Bits() + code.Cost(block);
}

void WriteBlock(BitWriter& to, const Block& block, Bytes bytes, bool last)
{
    static const Code fixed = MakeFixed();
    const Code dynamic = MakeDynamic(block);
    const CodeHeader header(dynamic);
    const std::uint64_t dynamicBits = header.Bits() + dynamic.Cost(block), fixedBits = fixed.Cost(block);
    if (StoredBits(bytes.size()) <= std::min(dynamicBits, fixedBits)) {
        WriteStored(to, bytes, last);
    } else if (fixedBits <= dynamicBits) {
        Begin(to, kFixed, last);
        WriteSymbols(to, fixed, block, bytes.data());
    } else {
        Begin(to, kDynamic, last);
        header.Write(to);
        WriteSymbols(to, dynamic, block, bytes.data());
    }
}

} // namespace veltrane::imaging
