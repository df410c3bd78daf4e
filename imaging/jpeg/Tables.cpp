#include "imaging/jpeg/Tables.h"

#include <bit>
#include <cstddef>
#include <cstdlib>
#include <span>

#include "imaging/bits/PrefixCode.h"

namespace veltrane::imaging::jpeg {

namespace {

// Coefficients in zigzag order: T.81, figure A.6.
constexpr std::array<std::uint8_t, 64> kZigZag { 0, 1, 8, 16, 9, 2, 3, 10, 17, 24, 32, 25, 18, 11, 4, 5, 12,
    19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6, 7, 14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63 };

constexpr std::size_t kEndOfBlock = 0x00;
constexpr std::size_t kSixteenZeros = 0xF0;
constexpr unsigned kLongest = 16;

// With 8-bit samples: T.81, tables F.1 and F.2.
constexpr unsigned kDcCategories = 12;
constexpr unsigned kAcCategories = 10;

std::size_t Category(int value)
{
    return static_cast<std::size_t>(std::bit_width(static_cast<unsigned>(std::abs(value))));
}

bool IsDc(std::size_t symbol)
{
    return symbol < kDcCategories;
}

bool IsAc(std::size_t symbol)
{
    const std::size_t category = symbol & 15;
    return symbol == kEndOfBlock || symbol == kSixteenZeros || (category >= 1 && category <= kAcCategories);
}

// A symbol that the sample does not contain counts half as much as one that it contains once; measured.
constexpr std::uint32_t kSeen = 4;
constexpr std::uint32_t kUnseen = 2;

Table TableFor(const std::array<std::uint32_t, 256>& counts, bool (*occurs)(std::size_t))
{
    // One more symbol, the rarest, takes the code of all ones, which no file may use: T.81, C.
    std::array<std::uint32_t, 257> frequencies {};
    for (std::size_t i = 0; i < counts.size(); ++i)
        frequencies[i] = occurs(i) ? counts[i] * kSeen + kUnseen : 0;
    frequencies.back() = 1;
    std::array<std::uint8_t, 257> lengths {};
    BuildLengths(frequencies, kLongest, lengths);
    Table table;
    std::size_t next = 0;
    for (unsigned bits = 1; bits <= kLongest; ++bits) {
        for (std::size_t i = 0; i < counts.size(); ++i) {
            if (lengths[i] != bits)
                continue;
            table.symbols[next++] = static_cast<std::uint8_t>(i);
            ++table.codes[bits];
        }
    }
    return table;
}

} // namespace

void Counts::Add(const std::int16_t* block, int dcBefore) noexcept
{
    ++dc[Category(block[0] - dcBefore)];
    std::size_t zeros = 0;
    for (std::size_t i = 1; i < kZigZag.size(); ++i) {
        const int value = block[kZigZag[i]];
        if (value == 0) {
            ++zeros;
            continue;
        }
        ac[kSixteenZeros] += static_cast<std::uint32_t>(zeros / 16);
        ++ac[zeros % 16 << 4 | Category(value)];
        zeros = 0;
    }
    ac[kEndOfBlock] += zeros != 0 ? 1 : 0;
}

Tables::Pair TablesFor(const Counts& counts)
{
    return { TableFor(counts.dc, IsDc), TableFor(counts.ac, IsAc) };
}

} // namespace veltrane::imaging::jpeg
