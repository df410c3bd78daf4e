#include "imaging/jpeg/baseline/Scan.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace veltrane::imaging::jpeg::baseline {

namespace {

constexpr std::size_t kBlockSide = 8;
constexpr std::size_t kMostZeros = 16; // that a step tells

// Where a coefficient lies in its block, row by row, by how many come before it and including it: so that
// a step tells it directly. Those behind the block's end are written into the room behind it.
// Source: T.81, figure A.6.
constexpr auto kPlaces = [] {
    std::array<std::uint8_t, kBlockSize + kMostZeros + Step::kToEnd + 1> places {};
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

// How many coefficients there are up to the last that is not 0, when so many steps' worth of them are done; 0
// when they go on behind the block's end.
unsigned UsedOf(unsigned done)
{
    if (done == kBlockSize)
        return kBlockSize;
    return done > Step::kToEnd ? done - Step::kToEnd : 0;
}

// The same of the block that comes next; 0 also for what is no code. Looking for more bits takes longer than
// a step, as each look has to wait for the one before: so they are looked for as seldom as short steps allow.
// Those of a first coefficient have been taken since the last time.
[[gnu::always_inline]] inline unsigned ReadCoefficients(
    Bits& bits, const CodeTable& table, const StepPairs& pairs, std::int16_t* block)
{
    constexpr unsigned kShortSteps = Bits::kFull / CodeTable::kLookUpBits - 1;
    unsigned done = 1;
    for (;; bits.Fill()) {
#pragma GCC unroll 4
        for (unsigned i = 0; i < kShortSteps; ++i) {
            StepPair pair = pairs.Look(bits.front);
            const bool open = pair.IsOpen();
            if (open) [[unlikely]] {
                bits.Fill();
                const Step step = table.Next(bits.front);
                if (step.IsUnknown())
                    return 0;
                pair = StepPair(step);
            }
            const unsigned first = done + pair.FirstFurther();
            done = first + pair.SecondFurther();
            block[kPlaces[first]] = pair.FirstValue();
            block[kPlaces[done]] = pair.SecondValue();
            if (done >= kBlockSize) {
                const bool alone = first >= kBlockSize; // then the second is the next block's
                bits.Drop(alone ? pair.FirstBits() : pair.Bits());
                return UsedOf(alone ? first : done);
            }
            bits.Drop(pair.Bits());
            if (open) [[unlikely]]
                break;
        }
    }
}

// The step of a first coefficient.
[[gnu::always_inline]] inline Step ReadDifference(Bits& bits, const CodeTable& table)
{
    bits.Fill();
    Step step = table.Look(bits.front);
    const bool open = step.IsOpen();
    if (open) [[unlikely]]
        step = table.Complete(step, bits.front);
    bits.Drop(step.Bits());
    if (open) [[unlikely]]
        bits.Fill();
    return step;
}

} // namespace

Scan::Codes::Codes(const Component& component)
    : differences(component.differences, CodeTable::Of::Differences)
    , coefficients(component.coefficients, CodeTable::Of::Coefficients)
    , pairs(coefficients)
{
}

Scan::Plane::Plane(const Component& component, std::shared_ptr<const Codes> codes)
    : across(static_cast<std::size_t>(component.across))
    , down(static_cast<std::size_t>(component.down))
    , codes(std::move(codes))
    , quantisers(component.quantisers)
{
}

namespace {

std::size_t BlocksOfUnit(const Frame& frame)
{
    std::size_t blocks = 0;
    for (const Component& component : frame.components)
        blocks += static_cast<std::size_t>(component.across * component.down);
    return blocks;
}

constexpr std::size_t kMostBlockBytes = kBlockSize * (16 + 15) / 8; // codes and values of the longest

} // namespace

std::size_t Scan::UnitsAcross(const Frame& frame) noexcept
{
    const std::size_t pixels = kBlockSide * static_cast<std::size_t>(frame.components.front().across);
    return (static_cast<std::size_t>(frame.width) + pixels - 1) / pixels;
}

Scan::Scan(const Frame& frame)
    : unitsAcross(UnitsAcross(frame))
    , restartInterval(frame.restartInterval)
    , untilRestart(restartInterval)
    , bytes(frame.scan, kMostBlockBytes * BlocksOfUnit(frame))
    , bits(bytes.Start())
{
    planes.reserve(frame.components.size());
    for (std::size_t i = 0; i < frame.components.size(); ++i) {
        const Codes& codes = *planes.emplace_back(frame.components[i], CodesFor(frame, i)).codes;
        valid = valid && codes.differences.Valid() && codes.coefficients.Valid();
    }
}

// Tables that are not there twice stay in the processor's nearest cache.
std::shared_ptr<const Scan::Codes> Scan::CodesFor(const Frame& frame, std::size_t component) const
{
    const Component& wanted = frame.components[component];
    for (std::size_t i = 0; i < component; ++i) {
        const Component& made = frame.components[i];
        if (made.differences == wanted.differences && made.coefficients == wanted.coefficients)
            return planes[i].codes;
    }
    return std::make_shared<Codes>(wanted);
}

bool Scan::DecodeRow(const std::vector<PlaneRows>& targets)
{
    if (!DecodeUnits(targets) || !bytes.Had(bits))
        return false;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        Plane& plane = planes[i];
        if (!plane.pair.Empty() && !plane.pair.Transform(plane.quantisers, targets[i].stride))
            return false;
    }
    return true;
}

[[gnu::target("avx2,bmi,bmi2")]] bool Scan::DecodeUnits(const std::vector<PlaneRows>& targets)
{
    Bits now = bits; // stays in registers
    for (std::size_t unit = 0; unit < unitsAcross; ++unit) {
        if (restartInterval != 0 && untilRestart-- == 0) [[unlikely]] {
            if (!Restart(Bits(now)))
                return false;
            now = bits;
        }
        if (!bytes.Ready(now) || !DecodeUnit(now, targets, unit))
            return false;
    }
    bits = now;
    return true;
}

[[gnu::always_inline]] inline bool Scan::DecodeUnit(
    Bits& now, const std::vector<PlaneRows>& targets, std::size_t unit)
{
    for (std::size_t i = 0; i < planes.size(); ++i) {
        Plane& plane = planes[i];
        const PlaneRows& target = targets[i];
        std::uint8_t* samples = target.samples + kBlockSide * plane.across * unit;
        for (std::size_t row = 0; row < plane.down; ++row, samples += kBlockSide * target.stride)
            for (std::size_t column = 0; column < plane.across; ++column)
                if (!DecodeBlock(now, plane, samples + kBlockSide * column, target.stride))
                    return false;
    }
    return true;
}

[[gnu::always_inline]] inline bool Scan::DecodeBlock(
    Bits& now, Plane& plane, std::uint8_t* target, std::size_t stride)
{
    constexpr int kFurthest = std::numeric_limits<std::int16_t>::max();
    const Step difference = ReadDifference(now, plane.codes->differences);
    plane.first += difference.Value();
    if (difference.IsUnknown() || plane.first > kFurthest || plane.first < -kFurthest)
        return false;
    std::int16_t* const block = plane.pair.Next();
    block[0] = static_cast<std::int16_t>(plane.first);
    const unsigned used = ReadCoefficients(now, plane.codes->coefficients, plane.codes->pairs, block);
    if (used == 0)
        return false;
    plane.pair.Add(target, used);
    return !plane.pair.Full() || plane.pair.Transform(plane.quantisers, stride);
}

bool Scan::Restart(const Bits& behind)
{
    constexpr unsigned kNumbers = 8;
    if (!bytes.PassRestart(behind, restarts++ % kNumbers))
        return false;
    bits = bytes.Start();
    untilRestart = restartInterval - 1;
    for (Plane& plane : planes)
        plane.first = 0;
    return true;
}

} // namespace veltrane::imaging::jpeg::baseline
