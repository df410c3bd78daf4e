#include "platform/codecs/png/Unfilter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "platform/codecs/png/PaethVector.h"

namespace veltrane::codecs::png {

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

// Vectors as the compiler knows them on every processor: 16 samples, or the same as four pixels.
using Bytes16 = std::uint8_t __attribute__((vector_size(16)));
using Pixels4 = std::uint32_t __attribute__((vector_size(16)));

std::uint32_t Load(const std::uint8_t* from) noexcept
{
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, from, sizeof pixel);
    return pixel;
}

// Four rows at once, each a pixel behind the row above it: what a row needs from the one above has then
// just been computed in the lane beside its own, and the four chains of dependent steps run as one.
class Wavefront {
public:
    Wavefront(const std::uint8_t* rows, std::size_t step, const std::uint8_t* above, std::uint8_t* rgba,
        std::size_t width)
        : step(step), width(width), above(above)
    {
        for (std::size_t k = 0; k < kBandRows; ++k) {
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
    void Run()
    {
        std::size_t t = 0;
        for (; t < kBandRows - 1; ++t)
            StepAtEnds<kStep>(t);
        for (; t < width; ++t)
            StepInside<kStep>(t);
        for (; t < width + kBandRows - 1; ++t)
            StepAtEnds<kStep>(t);
    }

private:
    // One step of all lanes; `raw` holds their filtered pixels.
    [[gnu::always_inline]] void Advance(Pixels4 raw, std::uint32_t aboveFirst)
    {
        const Pixels4 first { aboveFirst, 0, 0, 0 };
        const Bytes16 a = reinterpret_cast<Bytes16>(out);
        const Bytes16 b = reinterpret_cast<Bytes16>(__builtin_shufflevector(out, first, 4, 0, 1, 2));
        const Bytes16 mean = (a & b) + (((a ^ b) >> 1) & 0x7F);
        Bytes16 nearest;
        PaethOf(a, b, aboveLeft, nearest);
        const Bytes16 prediction = (a & reinterpret_cast<Bytes16>(sub)) | (b & reinterpret_cast<Bytes16>(up))
            | (mean & reinterpret_cast<Bytes16>(average)) | (nearest & reinterpret_cast<Bytes16>(paeth));
        out = reinterpret_cast<Pixels4>(reinterpret_cast<Bytes16>(raw) + prediction);
        aboveLeft = b;
    }

    template<std::size_t kStep>
    void Store(std::size_t k, std::size_t x)
    {
        const std::uint32_t pixel = kStep == 3 ? out[k] | kOpaque : out[k];
        std::memcpy(to[k] + x * 4, &pixel, sizeof pixel);
    }

    template<std::size_t kStep>
    void StepInside(std::size_t t)
    {
        Pixels4 raw {};
        for (std::size_t k = 0; k < kBandRows; ++k)
            raw[k] = Load(from[k] + (t - k) * kStep);
        Advance(raw, Load(above + t * 4));
        for (std::size_t k = 0; k < kBandRows; ++k)
            Store<kStep>(k, t - k);
    }

    // Near both ends some rows have not begun or are done. Those that have not begun compute zeros, which
    // is what the specification wants left of the first pixel.
    template<std::size_t kStep>
    void StepAtEnds(std::size_t t)
    {
        const auto inside = [&](std::size_t k) { return t >= k && t - k < width; };
        Pixels4 raw {};
        for (std::size_t k = 0; k < kBandRows; ++k)
            raw[k] = inside(k) ? Load(from[k] + (t - k) * kStep) : 0;
        Advance(raw, inside(0) ? Load(above + t * 4) : 0);
        for (std::size_t k = 0; k < kBandRows; ++k) {
            if (inside(k))
                Store<kStep>(k, t - k);
        }
    }

    static constexpr std::uint32_t kOpaque
        = std::endian::native == std::endian::little ? 0xFF00'0000 : 0x0000'00FF;

    Pixels4 sub {}, up {}, average {}, paeth {};
    Pixels4 out {};
    Bytes16 aboveLeft {};
    std::size_t step, width;
    const std::uint8_t* above;
    std::array<const std::uint8_t*, kBandRows> from {};
    std::array<std::uint8_t*, kBandRows> to {};
};

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
    Wavefront front(rows, step, above, rgba, width);
    if (step == 3)
        front.Run<3>();
    else
        front.Run<4>();
}

} // namespace veltrane::codecs::png
