#include "imaging/jpeg/baseline/Scan.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace veltrane::imaging::jpeg::baseline {

namespace {

constexpr std::size_t kBlockSide = 8;
constexpr std::size_t kLongestRun = 16; // of zeros, in one symbol

// The place in the block of each coefficient in zigzag order, counted from 1: the sum of all advances is then
// the index. Indices past the end of the block lead to the padding after it. Source: T.81, figure A.6.
constexpr auto kZigzag = [] {
    std::array<std::uint8_t, kBlockSize + kLongestRun + HuffmanEntry::kEndOfBlock + 1> places {};
    places.fill(kBlockSize);
    int row = 0, column = 0;
    bool rising = true;
    for (std::size_t i = 1; i <= kBlockSize; ++i) {
        places[i] = static_cast<std::uint8_t>(8 * row + column);
        const int further = rising ? 1 : -1;
        const bool turns = rising ? row == 0 || column == 7 : column == 0 || row == 7;
        if (!turns) {
            row -= further;
            column += further;
        } else {
            const bool alongRow = rising ? column != 7 : row == 7;
            (alongRow ? column : row) += 1;
            rising = !rising;
        }
    }
    return places;
}();

// The number of coefficients up to the last non-zero one, from the sum of all advances; 0 when they run past
// the end of the block.
unsigned CoefficientsUpTo(unsigned done)
{
    if (done == kBlockSize)
        return kBlockSize;
    return done > HuffmanEntry::kEndOfBlock ? done - HuffmanEntry::kEndOfBlock : 0;
}

// Decodes the next block's AC coefficients. Returns the number up to the last non-zero one, 0 for an invalid
// code. A refill takes longer than a lookup, so one refill serves as many lookups as it surely can. The DC
// coefficient's bits have been consumed since the last refill.
[[gnu::always_inline]] inline unsigned ReadAcCoefficients(
    BitBuffer& bits, const HuffmanTable& table, const EntryPairTable& pairs, std::int16_t* block)
{
    constexpr unsigned kLookUps = BitBuffer::kFull / HuffmanTable::kLookUpBits - 1;
    unsigned done = 1;
    for (;; bits.Fill()) {
#pragma GCC unroll 4
        for (unsigned i = 0; i < kLookUps; ++i) {
            EntryPair pair = pairs.LookUp(bits.front);
            const bool incomplete = pair.IsIncomplete();
            if (incomplete) [[unlikely]] {
                bits.Fill();
                const HuffmanEntry entry = table.Find(bits.front);
                if (entry.IsInvalid())
                    return 0;
                pair = EntryPair(entry);
            }
            const unsigned first = done + pair.FirstAdvance();
            done = first + pair.SecondAdvance();
            block[kZigzag[first]] = pair.FirstCoefficient();
            block[kZigzag[done]] = pair.SecondCoefficient();
            if (done >= kBlockSize) {
                const bool alone = first >= kBlockSize; // the second one belongs to the next block
                bits.Drop(alone ? pair.FirstBits() : pair.Bits());
                return CoefficientsUpTo(alone ? first : done);
            }
            bits.Drop(pair.Bits());
            if (incomplete) [[unlikely]]
                break;
        }
    }
}

// Decodes a DC difference.
[[gnu::always_inline]] inline HuffmanEntry ReadDcDifference(BitBuffer& bits, const HuffmanTable& table)
{
    bits.Fill();
    HuffmanEntry entry = table.LookUp(bits.front);
    const bool incomplete = entry.IsIncomplete();
    if (incomplete) [[unlikely]]
        entry = table.Complete(entry, bits.front);
    bits.Drop(entry.Bits());
    if (incomplete) [[unlikely]]
        bits.Fill();
    return entry;
}

} // namespace

Scan::Tables::Tables(const Component& component)
    : dc(component.dc, HuffmanTable::Kind::Dc), ac(component.ac, HuffmanTable::Kind::Ac), pairs(ac)
{
}

Scan::Plane::Plane(const Component& component, std::shared_ptr<const Tables> tables)
    : across(static_cast<std::size_t>(component.across))
    , down(static_cast<std::size_t>(component.down))
    , tables(std::move(tables))
    , quantisation(component.quantisation)
{
}

namespace {

std::size_t BlocksPerMcu(const Frame& frame)
{
    std::size_t blocks = 0;
    for (const Component& component : frame.components)
        blocks += static_cast<std::size_t>(component.across * component.down);
    return blocks;
}

constexpr std::size_t kLongestBlock
    = kBlockSize * (16 + 15) / 8; // bytes: the longest codes and additional bits

} // namespace

std::size_t Scan::McusPerRow(const Frame& frame) noexcept
{
    const std::size_t pixels = kBlockSide * static_cast<std::size_t>(frame.components.front().across);
    return (static_cast<std::size_t>(frame.width) + pixels - 1) / pixels;
}

Scan::Scan(const Frame& frame)
    : mcusPerRow(McusPerRow(frame))
    , restartInterval(frame.restartInterval)
    , untilRestart(restartInterval)
    , bytes(frame.scan, kLongestBlock * BlocksPerMcu(frame))
    , bits(bytes.Start())
{
    planes.reserve(frame.components.size());
    for (std::size_t i = 0; i < frame.components.size(); ++i) {
        const Tables& tables = *planes.emplace_back(frame.components[i], TablesFor(frame, i)).tables;
        valid = valid && tables.dc.Valid() && tables.ac.Valid();
    }
}

// Tables that two components share stay in the nearest cache.
std::shared_ptr<const Scan::Tables> Scan::TablesFor(const Frame& frame, std::size_t component) const
{
    const Component& wanted = frame.components[component];
    for (std::size_t i = 0; i < component; ++i) {
        const Component& made = frame.components[i];
        if (made.dc == wanted.dc && made.ac == wanted.ac)
            return planes[i].tables;
    }
    return std::make_shared<Tables>(wanted);
}

bool Scan::DecodeRow(const std::vector<PlaneRows>& targets)
{
    if (!DecodeMcus(targets) || !bytes.Within(bits))
        return false;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        Plane& plane = planes[i];
        if (!plane.pair.Empty() && !plane.pair.Transform(plane.quantisation, targets[i].stride))
            return false;
    }
    return true;
}

[[gnu::target("avx2,bmi,bmi2")]] bool Scan::DecodeMcus(const std::vector<PlaneRows>& targets)
{
    BitBuffer now = bits; // stays in registers
    for (std::size_t mcu = 0; mcu < mcusPerRow; ++mcu) {
        if (restartInterval != 0 && untilRestart-- == 0) [[unlikely]] {
            if (!Restart(BitBuffer(now)))
                return false;
            now = bits;
        }
        if (!bytes.Ready(now) || !DecodeMcu(now, targets, mcu))
            return false;
    }
    bits = now;
    return true;
}

[[gnu::always_inline]] inline bool Scan::DecodeMcu(
    BitBuffer& now, const std::vector<PlaneRows>& targets, std::size_t mcu)
{
    for (std::size_t i = 0; i < planes.size(); ++i) {
        Plane& plane = planes[i];
        const PlaneRows& target = targets[i];
        std::uint8_t* samples = target.samples + kBlockSide * plane.across * mcu;
        for (std::size_t row = 0; row < plane.down; ++row, samples += kBlockSide * target.stride)
            for (std::size_t column = 0; column < plane.across; ++column)
                if (!DecodeBlock(now, plane, samples + kBlockSide * column, target.stride))
                    return false;
    }
    return true;
}

[[gnu::always_inline]] inline bool Scan::DecodeBlock(
    BitBuffer& now, Plane& plane, std::uint8_t* target, std::size_t stride)
{
    constexpr int kLargest = std::numeric_limits<std::int16_t>::max();
    const HuffmanEntry difference = ReadDcDifference(now, plane.tables->dc);
    plane.dcPredictor += difference.Coefficient();
    if (difference.IsInvalid() || plane.dcPredictor > kLargest || plane.dcPredictor < -kLargest)
        return false;
    std::int16_t* const block = plane.pair.Next();
    block[0] = static_cast<std::int16_t>(plane.dcPredictor);
    const unsigned coefficients = ReadAcCoefficients(now, plane.tables->ac, plane.tables->pairs, block);
    if (coefficients == 0)
        return false;
    plane.pair.Add(target, coefficients);
    return !plane.pair.Full() || plane.pair.Transform(plane.quantisation, stride);
}

bool Scan::Restart(const BitBuffer& now)
{
    constexpr unsigned kNumbers = 8;
    if (!bytes.SkipRestartMarker(now, restarts++ % kNumbers))
        return false;
    bits = bytes.Start();
    untilRestart = restartInterval - 1;
    for (Plane& plane : planes)
        plane.dcPredictor = 0;
    return true;
}

} // namespace veltrane::imaging::jpeg::baseline
