#pragma once

// The arithmetic of the scaler: sums of pixels down a column, then of columns across. A header, because it
// is compiled once for each kind of processor. Vectors are handed out by reference: given back by value,
// they would need the same instruction set on both sides of a call.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace veltrane::imaging::scaler {

inline constexpr int kChannels = 4;

// The loops over pixels work on vectors of the compiler's own, so that one source serves every processor.
using Words16 [[gnu::vector_size(32)]] = std::uint16_t;
using Pairs8 [[gnu::vector_size(32)]] = std::uint32_t;
using Words8 [[gnu::vector_size(16)]] = std::uint16_t;
using Pairs4 [[gnu::vector_size(16)]] = std::uint32_t;
using Longs2 [[gnu::vector_size(16)]] = std::uint64_t;
using Counts4 [[gnu::vector_size(16)]] = std::int32_t;
using Floats4 [[gnu::vector_size(16)]] = float;
using Bytes4 [[gnu::vector_size(4)]] = std::uint8_t;

#define VELTRANE_INLINE [[gnu::always_inline]] inline

inline constexpr std::size_t kBlockBytes = sizeof(Words16);

// A pixel is two words in memory, red and green, then blue and alpha. Blocks sum eight columns; a sum of
// 16 bits takes one half of the words: `low` red and blue, `high` green and alpha.
struct Sums {
    Words16 low {};
    Words16 high {};
};

// bytes * factor / 256: a whole factor would be 65536.
VELTRANE_INLINE void Multiply(const Words16& bytes, const Words16& factor, Words16& product) noexcept
{
    product = bytes * (factor >> 8) + ((bytes * (factor & 0xFF)) >> 8);
}

// Of an opaque picture the whole words are added, and what the high halves put into them is taken off
// at the end: the low halves never sum to more than a word holds.
struct OpaqueBlock {
    static constexpr float kUnit = 1; // what the sums count a byte as
    Words16 words {};
    Words16 high {};
    Sums edges; // already scaled

    VELTRANE_INLINE void Add(const Words16& pixels) noexcept
    {
        words += pixels;
        high += pixels >> 8;
    }
    VELTRANE_INLINE void AddShare(const Words16& pixels, const Words16& weight, int scaleBits) noexcept
    {
        Words16 part;
        Multiply(pixels & 0xFF, weight, part);
        edges.low += part >> (8 - scaleBits);
        Multiply(pixels >> 8, weight, part);
        edges.high += part >> (8 - scaleBits);
    }
    VELTRANE_INLINE void Finish(int scaleBits, Sums& sums) const noexcept
    {
        sums.low = ((words - (high << 8)) << scaleBits) + edges.low;
        sums.high = (high << scaleBits) + edges.high;
    }
};

// Sums words in 32 bits each, two words to a lane in the same way as above.
struct LongSums {
    Pairs8 both {};
    Pairs8 high {};

    VELTRANE_INLINE void Add(const Words16& words) noexcept
    {
        const auto pairs = reinterpret_cast<Pairs8>(words);
        both += pairs;
        high += pairs >> 16;
    }
    // The sums with `bits` taken off, which then have 16.
    VELTRANE_INLINE void Shorten(int bits, Words16& sums) const noexcept
    {
        const Pairs8 low = both - (high << 16);
        sums = reinterpret_cast<Words16>((low >> bits) | (high >> bits) << 16);
    }
};

VELTRANE_INLINE void SpreadAlpha(const Words16& high, Words16& alpha) noexcept
{
    alpha = __builtin_shufflevector(high, high, 1, 1, 3, 3, 5, 5, 7, 7, 9, 9, 11, 11, 13, 13, 15, 15);
}

inline constexpr Words16 kWholeAlpha { 0, 255, 0, 255, 0, 255, 0, 255, 0, 255, 0, 255, 0, 255, 0, 255 };

// Of other pictures, colours count by their product with alpha, and alpha by that with 255.
struct AlphaBlock {
    static constexpr float kUnit = 255.0F / 256;
    LongSums low;
    LongSums high;

    VELTRANE_INLINE void Add(const Words16& pixels) noexcept
    {
        const Words16 top = pixels >> 8;
        Words16 alpha;
        SpreadAlpha(top, alpha);
        low.Add((pixels & 0xFF) * alpha);
        high.Add((top | kWholeAlpha) * alpha);
    }
    VELTRANE_INLINE void AddShare(const Words16& pixels, const Words16& weight, int) noexcept
    {
        const Words16 top = pixels >> 8;
        Words16 alpha, part;
        SpreadAlpha(top, alpha);
        Multiply(alpha, weight, part);
        alpha = part;
        Multiply(pixels & 0xFF, alpha, part);
        low.Add(part);
        Multiply(top | kWholeAlpha, alpha, part);
        high.Add(part);
    }
    VELTRANE_INLINE void Finish(int scaleBits, Sums& sums) const noexcept
    {
        low.Shorten(8 - scaleBits, sums.low);
        high.Shorten(8 - scaleBits, sums.high);
    }
};

// Puts down the sums of eight columns: four words each, red, blue, green, alpha.
VELTRANE_INLINE void Store(const Sums& sums, std::uint16_t* to) noexcept
{
    const auto low = reinterpret_cast<Pairs8>(sums.low);
    const auto high = reinterpret_cast<Pairs8>(sums.high);
    const Pairs8 left = __builtin_shufflevector(low, high, 0, 8, 1, 9, 2, 10, 3, 11);
    const Pairs8 right = __builtin_shufflevector(low, high, 4, 12, 5, 13, 6, 14, 7, 15);
    std::memcpy(to, &left, sizeof left);
    std::memcpy(to + sizeof left / sizeof *to, &right, sizeof right);
}

// Sums of columns on the way to a pixel: red and green, then blue and alpha, each of two columns.
struct Halves {
    Pairs4 even {};
    Pairs4 odd {};
};

VELTRANE_INLINE void AddColumns(Halves& halves, const Pairs4& two) noexcept
{
    halves.even += two & 0xFFFF;
    halves.odd += two >> 16;
}

VELTRANE_INLINE void LoadColumn(const std::uint16_t* column, Longs2& words) noexcept
{
    std::uint64_t word;
    std::memcpy(&word, column, sizeof word);
    words = Longs2 { word, 0 };
}

// The four sums of all columns together. They stay below 2^31: a side has at most 32767.
VELTRANE_INLINE void ToSum(const Halves& halves, Floats4& sum) noexcept
{
    const Pairs4 even = halves.even + __builtin_shufflevector(halves.even, halves.even, 2, 3, 2, 3);
    const Pairs4 odd = halves.odd + __builtin_shufflevector(halves.odd, halves.odd, 2, 3, 2, 3);
    const Pairs4 both = __builtin_shufflevector(even, odd, 0, 4, 1, 5);
    sum = __builtin_convertvector(reinterpret_cast<Counts4>(both), Floats4);
}

VELTRANE_INLINE void AddShareOf(const std::uint16_t* column, float share, Floats4& sum) noexcept
{
    Longs2 loaded;
    LoadColumn(column, loaded);
    const auto words = reinterpret_cast<Words8>(loaded);
    const Words8 wide = __builtin_shufflevector(words, Words8 {}, 0, 8, 1, 9, 2, 10, 3, 11);
    sum += __builtin_convertvector(reinterpret_cast<Counts4>(wide), Floats4) * share;
}

} // namespace veltrane::imaging::scaler
