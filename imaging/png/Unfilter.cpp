#include "imaging/png/Unfilter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "imaging/bits/Processor.h"
#include "imaging/png/PaethVector.h"

namespace veltrane::imaging::png {

namespace {

void UnfilterUp(std::uint8_t* __restrict row, const std::uint8_t* __restrict above, std::size_t bytes)
{
    for (std::size_t i = 0; i < bytes; ++i)
        row[i] = static_cast<std::uint8_t>(row[i] + above[i]);
}

// The filters that look to the left, with the pixel's size known to the compiler.
template<std::size_t step>
void UnfilterAlong(Filter filter, std::uint8_t* row, const std::uint8_t* above, std::size_t bytes)
{
    std::array<std::uint8_t, step> left {}, aboveLeft {};
    for (std::size_t i = 0; i + step <= bytes; i += step) {
        for (std::size_t k = 0; k < step; ++k) {
            const std::uint8_t a = left[k], b = above[i + k];
            const int prediction = filter == kSub ? a
                : filter == kAverage              ? (a + b) / 2
                                                  : Paeth(a, b, aboveLeft[k]);
            left[k] = row[i + k] = static_cast<std::uint8_t>(row[i + k] + prediction);
            aboveLeft[k] = b;
        }
    }
}

template<std::size_t step>
void UnfilterBy(Filter filter, std::uint8_t* row, const std::uint8_t* above, std::size_t bytes)
{
    switch (filter) { // a constant in each call, so that the choice leaves the loop
    case kSub: UnfilterAlong<step>(kSub, row, above, bytes); break;
    case kAverage: UnfilterAlong<step>(kAverage, row, above, bytes); break;
    default: UnfilterAlong<step>(kPaeth, row, above, bytes); break;
    }
}

[[gnu::always_inline]] inline std::uint32_t Load(const std::uint8_t* from) noexcept
{
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, from, sizeof pixel);
    return pixel;
}

// Vectors as the compiler knows them on every processor: a pixel of each row, and its samples.
template<std::size_t kRows>
struct Vectors;
template<>
struct Vectors<4> {
    using Lanes = std::uint8_t __attribute__((vector_size(16)));
    using Pixels = std::uint32_t __attribute__((vector_size(16)));
};
template<>
struct Vectors<8> {
    using Lanes = std::uint8_t __attribute__((vector_size(32)));
    using Pixels = std::uint32_t __attribute__((vector_size(32)));
};

// Some rows at once, each a pixel behind the row above it: what a row needs from the one above has then
// just been computed in the lane beside its own, and the chains of dependent steps run as one.
template<std::size_t kRows>
class Wavefront {
    using Lanes = typename Vectors<kRows>::Lanes;
    using Pixels = typename Vectors<kRows>::Pixels;

public:
    [[gnu::always_inline]] Wavefront(const std::uint8_t* rows, std::size_t step, const std::uint8_t* above,
        std::uint8_t* rgba, std::size_t width)
        : width(width), above(above)
    {
        for (std::size_t k = 0; k < kRows; ++k) {
            const std::uint8_t* const row = rows + k * (1 + step * width);
            const std::uint32_t all = 0xFFFF'FFFF;
            sub[k] = *row == kSub ? all : 0;
            up[k] = *row == kUp ? all : 0;
            average[k] = *row == kAverage ? all : 0;
            paeth[k] = *row == kPaeth ? all : 0;
            from[k] = row + 1;
            to[k] = rgba + k * width * 4;
        }
    }

    template<std::size_t kStep>
    [[gnu::always_inline]] void Run()
    {
        std::size_t t = 0;
        for (; t < kRows - 1; ++t)
            StepAtEnds<kStep>(t);
        for (; t < width; ++t)
            StepInside<kStep>(t);
        for (; t < width + kRows - 1; ++t)
            StepAtEnds<kStep>(t);
    }

private:
    // One step of all lanes; `raw` holds their filtered pixels.
    [[gnu::always_inline]] void Advance(const Pixels& raw, std::uint32_t aboveFirst)
    {
        const Pixels first { aboveFirst };
        const Lanes a = reinterpret_cast<Lanes>(out);
        Pixels below;
        Below(first, below);
        const Lanes b = reinterpret_cast<Lanes>(below);
        const Lanes mean = (a & b) + (((a ^ b) >> 1) & 0x7F);
        Lanes nearest;
        PaethOf(a, b, aboveLeft, nearest);
        const Lanes prediction = (a & reinterpret_cast<Lanes>(sub)) | (b & reinterpret_cast<Lanes>(up))
            | (mean & reinterpret_cast<Lanes>(average)) | (nearest & reinterpret_cast<Lanes>(paeth));
        out = reinterpret_cast<Pixels>(reinterpret_cast<Lanes>(raw) + prediction);
        aboveLeft = b;
    }

    // What the rows above have just computed, `first` for the first row.
    [[gnu::always_inline]] void Below(const Pixels& first, Pixels& below) const
    {
        if constexpr (kRows == 8)
            below = __builtin_shufflevector(out, first, 8, 0, 1, 2, 3, 4, 5, 6);
        else
            below = __builtin_shufflevector(out, first, 4, 0, 1, 2);
    }

    template<std::size_t kStep>
    [[gnu::always_inline]] void Store(std::size_t k, std::size_t x)
    {
        const std::uint32_t pixel = kStep == 3 ? out[k] | kOpaque : out[k];
        std::memcpy(to[k] + x * 4, &pixel, sizeof pixel);
    }

    template<std::size_t kStep>
    [[gnu::always_inline]] void StepInside(std::size_t t)
    {
        Pixels raw {};
        for (std::size_t k = 0; k < kRows; ++k)
            raw[k] = Load(from[k] + (t - k) * kStep);
        Advance(raw, Load(above + t * 4));
        for (std::size_t k = 0; k < kRows; ++k)
            Store<kStep>(k, t - k);
    }

    // Near both ends some rows have not begun or are done. Those that have not begun compute zeros, which
    // is what the format wants left of the first pixel.
    template<std::size_t kStep>
    [[gnu::always_inline]] void StepAtEnds(std::size_t t)
    {
        const auto inside = [&](std::size_t k) { return t >= k && t - k < width; };
        Pixels raw {};
        for (std::size_t k = 0; k < kRows; ++k)
            raw[k] = inside(k) ? Load(from[k] + (t - k) * kStep) : 0;
        Advance(raw, inside(0) ? Load(above + t * 4) : 0);
        for (std::size_t k = 0; k < kRows; ++k) {
            if (inside(k))
                Store<kStep>(k, t - k);
        }
    }

    static constexpr std::uint32_t kOpaque
        = std::endian::native == std::endian::little ? 0xFF00'0000 : 0x0000'00FF;

    Pixels sub {}, up {}, average {}, paeth {};
    Pixels out {};
    Lanes aboveLeft {};
    std::size_t width;
    const std::uint8_t* above;
    std::array<const std::uint8_t*, kRows> from {};
    std::array<std::uint8_t*, kRows> to {};
};

template<std::size_t kRows>
[[gnu::always_inline]] inline void Run(const std::uint8_t* rows, std::size_t step, const std::uint8_t* above,
    std::uint8_t* rgba, std::size_t width)
{
    Wavefront<kRows> front(rows, step, above, rgba, width);
    if (step == 3)
        front.template Run<3>();
    else
        front.template Run<4>();
}

#ifdef __x86_64__
[[gnu::target("avx2")]] void RunBandAvx2(const std::uint8_t* rows, std::size_t step,
    const std::uint8_t* above, std::uint8_t* rgba, std::size_t width)
{
    Run<kBandRows>(rows, step, above, rgba, width);
}
#endif

} // namespace

void Unfilter(
    Filter filter, std::uint8_t* row, const std::uint8_t* above, std::size_t bytes, std::size_t step)
{
    if (filter == kNone)
        return;
    if (filter == kUp)
        return UnfilterUp(row, above, bytes);
    switch (step) {
    case 1: return UnfilterBy<1>(filter, row, above, bytes);
    case 2: return UnfilterBy<2>(filter, row, above, bytes);
    case 3: return UnfilterBy<3>(filter, row, above, bytes);
    case 4: return UnfilterBy<4>(filter, row, above, bytes);
    case 6: return UnfilterBy<6>(filter, row, above, bytes);
    default: return UnfilterBy<8>(filter, row, above, bytes);
    }
}

void UnfilterBand(const std::uint8_t* rows, std::size_t step, const std::uint8_t* above, std::uint8_t* rgba,
    std::size_t width)
{
#ifdef __x86_64__
    if (HasAvx2())
        return RunBandAvx2(rows, step, above, rgba, width);
#endif
    // Four lanes fill a register where there is nothing newer.
    const std::size_t half = kBandRows / 2 * width;
    Run<kBandRows / 2>(rows, step, above, rgba, width);
    Run<kBandRows / 2>(
        rows + kBandRows / 2 + half * step, step, rgba + (half - width) * 4, rgba + half * 4, width);
}

} // namespace veltrane::imaging::png
