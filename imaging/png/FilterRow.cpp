#include "imaging/png/FilterRow.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "imaging/bits/Processor.h"
#include "imaging/png/PaethVector.h"

namespace veltrane::imaging::png {

namespace {

using Lanes = std::uint8_t __attribute__((vector_size(32)));
using Wide = std::uint16_t __attribute__((vector_size(32)));

[[gnu::always_inline]] inline void LoadLanes(Lanes& lanes, const std::uint8_t* from)
{
    std::memcpy(&lanes, from, sizeof lanes);
}

// The neighbours of 32 samples.
struct Neighbours {
    Lanes here, left, above, aboveLeft;

    [[gnu::always_inline]] Neighbours(
        const std::uint8_t* row, const std::uint8_t* up, std::size_t at, std::size_t step)
    {
        LoadLanes(here, row + at);
        LoadLanes(left, row + at - step);
        LoadLanes(above, up + at);
        LoadLanes(aboveLeft, up + at - step);
    }
    template<Filter filter>
    [[gnu::always_inline]] void Residues(Lanes& out) const
    {
        if constexpr (filter == kSub)
            out = here - left;
        else if constexpr (filter == kUp)
            out = here - above;
        else if constexpr (filter == kAverage)
            out = here - ((left & above) + (((left ^ above) >> 1) & 0x7F));
        else
            Paeth(out);
    }

private:
    [[gnu::always_inline]] void Paeth(Lanes& out) const
    {
        Lanes prediction;
        PaethOf(left, above, aboveLeft, prediction);
        out = here - prediction;
    }
};

// How far residues lie from 0 in either direction, all together.
class Sum {
public:
    [[gnu::always_inline]] void Add(const Lanes& residues)
    {
        const Lanes opposite = 0 - residues;
        const Wide pairs = reinterpret_cast<Wide>(residues < opposite ? residues : opposite);
        lanes += (pairs & 0xFF) + (pairs >> 8);
    }
    // To be called before 256 additions, each of which adds up to 256 to a lane of 16 bits.
    [[gnu::always_inline]] void Carry()
    {
        for (std::size_t i = 0; i < sizeof(Wide) / 2; ++i)
            total += lanes[i];
        lanes = Wide {};
    }
    [[nodiscard]] std::uint64_t Total() const noexcept { return total; }

private:
    Wide lanes {};
    std::uint64_t total = 0;
};

template<Filter filter>
[[gnu::always_inline]] inline void AddTo(Sum& sum, const Neighbours& near)
{
    Lanes residues;
    near.Residues<filter>(residues);
    sum.Add(residues);
}

[[gnu::always_inline]] inline Filter BestOf(
    const std::uint8_t* row, const std::uint8_t* above, std::size_t bytes, std::size_t step)
{
    constexpr std::size_t kSampleStep = 2 * sizeof(Lanes); // every other vector tells enough
    constexpr std::size_t kStretch = 128 * kSampleStep;
    Sum sub, up, average, paeth;
    for (std::size_t start = 0; start < bytes; start += kStretch) {
        const std::size_t end = std::min(bytes, start + kStretch);
        for (std::size_t i = start; i < end; i += kSampleStep) {
            const Neighbours near(row, above, i, step);
            AddTo<kSub>(sub, near);
            AddTo<kUp>(up, near);
            AddTo<kAverage>(average, near);
            AddTo<kPaeth>(paeth, near);
        }
        sub.Carry();
        up.Carry();
        average.Carry();
        paeth.Carry();
    }
    const std::array<std::uint64_t, 4> totals { sub.Total(), up.Total(), average.Total(), paeth.Total() };
    return static_cast<Filter>(kSub + (std::min_element(totals.begin(), totals.end()) - totals.begin()));
}

template<Filter filter>
[[gnu::always_inline]] inline void WriteResidues(const std::uint8_t* row, const std::uint8_t* above,
    std::uint8_t* residues, std::size_t bytes, std::size_t step)
{
    for (std::size_t i = 0; i < bytes; i += sizeof(Lanes)) {
        Lanes out;
        Neighbours(row, above, i, step).Residues<filter>(out);
        std::memcpy(residues + i, &out, sizeof out);
    }
}

[[gnu::always_inline]] inline void WriteAny(Filter filter, const std::uint8_t* row, const std::uint8_t* above,
    std::uint8_t* residues, std::size_t bytes, std::size_t step)
{
    switch (filter) {
    case kSub: return WriteResidues<kSub>(row, above, residues, bytes, step);
    case kUp: return WriteResidues<kUp>(row, above, residues, bytes, step);
    case kAverage: return WriteResidues<kAverage>(row, above, residues, bytes, step);
    case kPaeth: return WriteResidues<kPaeth>(row, above, residues, bytes, step);
    default: std::memcpy(residues, row, bytes); return;
    }
}

// The same source for the processor every build runs on, and for a newer one where it is there.
#ifdef __x86_64__
[[gnu::target("avx2")]] Filter BestOfAvx2(
    const std::uint8_t* row, const std::uint8_t* above, std::size_t bytes, std::size_t step)
{
    return BestOf(row, above, bytes, step);
}

[[gnu::target("avx2")]] void WriteAnyAvx2(Filter filter, const std::uint8_t* row, const std::uint8_t* above,
    std::uint8_t* residues, std::size_t bytes, std::size_t step)
{
    WriteAny(filter, row, above, residues, bytes, step);
}
#endif

} // namespace

Filter BestFilter(const std::uint8_t* row, const std::uint8_t* above, std::size_t bytes, std::size_t step)
{
#ifdef __x86_64__
    if (HasAvx2())
        return BestOfAvx2(row, above, bytes, step);
#endif
    return BestOf(row, above, bytes, step);
}

void FilterRow(Filter filter, const std::uint8_t* row, const std::uint8_t* above, std::uint8_t* residues,
    std::size_t bytes, std::size_t step)
{
#ifdef __x86_64__
    if (HasAvx2())
        return WriteAnyAvx2(filter, row, above, residues, bytes, step);
#endif
    WriteAny(filter, row, above, residues, bytes, step);
}

} // namespace veltrane::imaging::png
