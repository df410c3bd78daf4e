#include "imaging/tiff/Samples.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace veltrane::imaging {

namespace {

template<class T>
constexpr std::uint64_t kTop = std::numeric_limits<T>::max();

template<class Number>
Number Load(const std::uint8_t* row, std::size_t i)
{
    Number number;
    std::memcpy(&number, row + i * sizeof number, sizeof number);
    return number;
}

// Three bytes, in the machine's order.
std::uint32_t Load24(const std::uint8_t* row, std::size_t i)
{
    const std::uint8_t* const at = row + i * 3;
    const std::uint32_t first = at[0], middle = at[1], last = at[2];
    return std::endian::native == std::endian::little ? last << 16 | middle << 8 | first
                                                      : first << 16 | middle << 8 | last;
}

// Numbers of up to 32 bits packed without gaps; touches no byte behind the last one wanted.
class PackedNumbers {
public:
    PackedNumbers(const std::uint8_t* row, unsigned bits) noexcept : next(row), bits(bits) { }

    [[nodiscard]] std::uint32_t Next() noexcept
    {
        for (; held < bits; held += 8)
            pool = pool << 8 | *next++;
        held -= bits;
        return static_cast<std::uint32_t>(pool >> held & ((std::uint64_t { 1 } << bits) - 1));
    }

private:
    const std::uint8_t* next;
    std::uint64_t pool = 0;
    unsigned held = 0;
    unsigned bits;
};

// A float of less than 32 bits (IEEE 754-2008 for 16; for 24, TIFF Technical Note 3: 1, 7 and 16 bits).
double SmallFloat(std::uint32_t word, int exponentBits, int fractionBits)
{
    const auto fraction = static_cast<double>(word & ((1u << fractionBits) - 1));
    const int most = (1 << exponentBits) - 1;
    const int exponent = static_cast<int>(word >> fractionBits) & most;
    const int bias = most / 2;
    const bool negative = (word >> (exponentBits + fractionBits)) != 0;
    double value = std::ldexp(fraction, 1 - bias - fractionBits);
    if (exponent == most)
        value = fraction == 0.0 ? std::numeric_limits<double>::infinity() : 0.0;
    else if (exponent != 0)
        value = std::ldexp(1.0 + std::ldexp(fraction, -fractionBits), exponent - bias);
    return negative ? -value : value;
}

double LoadFloat(const std::uint8_t* row, std::size_t i, unsigned bits)
{
    switch (bits) {
    case 16: return SmallFloat(Load<std::uint16_t>(row, i), 5, 10);
    case 24: return SmallFloat(Load24(row, i), 7, 16);
    case 32: return static_cast<double>(Load<float>(row, i));
    default: return Load<double>(row, i);
    }
}

template<class T>
void UnpackFloats(const TiffPage& page, const std::uint8_t* row, std::size_t count, T* to, std::size_t step)
{
    const double scale = 1.0 / (page.ceiling - page.floor);
    for (std::size_t i = 0; i < count; ++i) {
        const double value = (LoadFloat(row, i, page.bits) - page.floor) * scale;
        const double kept = value > 0.0 ? std::fmin(value, 1.0) : 0.0; // what is no number is black
        to[i * step] = static_cast<T>(std::lround(kept * static_cast<double>(kTop<T>)));
    }
}

// Signed numbers run from their smallest as black to their largest as white.
template<class T, class Next>
void Scale(const TiffPage& page, unsigned bits, std::size_t count, T* to, std::size_t step, Next next)
{
    const std::uint64_t top = (std::uint64_t { 1 } << bits) - 1;
    const std::uint64_t flip = page.numbers == TiffNumbers::Signed ? std::uint64_t { 1 } << (bits - 1) : 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t number = next(i) ^ flip;
        if constexpr (std::is_same_v<T, std::uint8_t>)
            to[i * step] = static_cast<T>((number * 255 + top / 2) / top);
        else
            to[i * step] = static_cast<T>((number * 65'535 + top / 2) / top);
    }
}

// The common case by itself, so that the compiler works on many samples at once.
void Narrow16(const std::uint8_t* row, std::size_t count, std::uint8_t* to, std::size_t step)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t number = Load<std::uint16_t>(row, i);
        to[i * step] = static_cast<std::uint8_t>((number * 255 + 32'895) >> 16); // rounded, exactly
    }
}

} // namespace

template<class T>
void Unpack(const TiffPage& page, const std::uint8_t* row, std::size_t count, T* to, std::size_t step)
{
    if (page.numbers == TiffNumbers::Float)
        return UnpackFloats(page, row, count, to, step);
    switch (page.bits) {
    case 8: return Scale(page, 8, count, to, step, [&](std::size_t i) { return std::uint64_t { row[i] }; });
    case 16:
        if constexpr (std::is_same_v<T, std::uint8_t>) {
            if (page.numbers == TiffNumbers::Unsigned)
                return Narrow16(row, count, to, step);
        }
        return Scale(page, 16, count, to, step,
            [&](std::size_t i) { return std::uint64_t { Load<std::uint16_t>(row, i) }; });
    case 24:
        return Scale(
            page, 24, count, to, step, [&](std::size_t i) { return std::uint64_t { Load24(row, i) }; });
    case 32:
        return Scale(page, 32, count, to, step,
            [&](std::size_t i) { return std::uint64_t { Load<std::uint32_t>(row, i) }; });
    case 64: // the lower half is finer than anything shown
        return Scale(
            page, 32, count, to, step, [&](std::size_t i) { return Load<std::uint64_t>(row, i) >> 32; });
    default: {
        PackedNumbers numbers(row, page.bits);
        return Scale(
            page, page.bits, count, to, step, [&](std::size_t) { return std::uint64_t { numbers.Next() }; });
    }
    }
}

template void Unpack(const TiffPage&, const std::uint8_t*, std::size_t, std::uint8_t*, std::size_t);
template void Unpack(const TiffPage&, const std::uint8_t*, std::size_t, std::uint16_t*, std::size_t);

void UnpackIndices(
    const TiffPage& page, const std::uint8_t* row, std::size_t count, std::uint16_t* to, std::size_t step)
{
    PackedNumbers numbers(row, page.bits);
    for (std::size_t i = 0; i < count; ++i)
        to[i * step]
            = page.bits == 16 ? Load<std::uint16_t>(row, i) : static_cast<std::uint16_t>(numbers.Next());
}

} // namespace veltrane::imaging
