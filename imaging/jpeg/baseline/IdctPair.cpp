#include "imaging/jpeg/baseline/IdctPair.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include <immintrin.h>

namespace veltrane::imaging::jpeg::baseline {

QuantisationTable::QuantisationTable(const std::array<std::uint16_t, kBlockSize>& table) : factors(table)
{
    constexpr int kLargest = 8191; // four times that, or the sum of two, fits 16 bits
    for (std::size_t i = 0; i < kBlockSize; ++i)
        limits[i] = static_cast<std::int16_t>(
            factors[i] == 0 ? std::numeric_limits<std::int16_t>::max() : kLargest / factors[i]);
}

namespace {

// The inverse DCT in integers, exact to the last bit as the Independent JPEG Group's "slow integer" method:
// C. Loeffler, A. Ligtenberg, G. Moschytz, "Practical fast 1-D DCT algorithms with 11 multiplications",
// ICASSP 1989, with 13 fractional bits and two more kept between the passes.
constexpr int kFractionBits = 13, kKeptBits = 2;
constexpr int kFirstShift = kFractionBits - kKeptBits, kSecondShift = kFractionBits + kKeptBits + 3;

constexpr int k0_298 = 2446, k0_390 = 3196, k0_541 = 4433, k0_765 = 6270, k0_899 = 7373, k1_175 = 9633,
              k1_501 = 12299, k1_847 = 15137, k1_961 = 16069, k2_053 = 16819, k2_562 = 20995, k3_072 = 25172;

// Rows, and in the second pass columns, of both blocks: 8 numbers of the one, then 8 of the other.
struct Rows {
    __m256i at[8];
};

constexpr unsigned kFewCoefficients
    = 10; // coefficients, in zigzag order, that lie in the first four rows and columns

#define FOR_AVX2 [[gnu::target("avx2"), gnu::always_inline]] inline

// a times the first number of each pair and b times the second.
FOR_AVX2 __m256i Mixed(__m256i pairs, int a, int b)
{
    const auto both = static_cast<std::uint32_t>(b) << 16 | (static_cast<std::uint32_t>(a) & 0xFFFF);
    return _mm256_madd_epi16(pairs, _mm256_set1_epi32(static_cast<int>(both)));
}

// Half of the numbers of two rows, in pairs.
template<bool upper>
FOR_AVX2 __m256i Pairs(__m256i a, __m256i b)
{
    return upper ? _mm256_unpackhi_epi16(a, b) : _mm256_unpacklo_epi16(a, b);
}

// Half of the numbers with the fraction's bits behind them.
template<bool upper>
FOR_AVX2 __m256i Raised(__m256i numbers)
{
    return _mm256_srai_epi32(Pairs<upper>(_mm256_setzero_si256(), numbers), 16 - kFractionBits);
}

struct Odd {
    __m256i at0, at1, at2, at3;
};

template<bool few, bool upper>
FOR_AVX2 Odd OddPart(const Rows& x)
{
    if constexpr (few) {
        const __m256i z = Pairs<upper>(x.at[3], x.at[1]);
        return { Mixed(z, k1_175 - k1_961, k1_175 - k0_899), Mixed(z, k1_175 - k2_562, k1_175 - k0_390),
            Mixed(z, k3_072 - k2_562 + k1_175 - k1_961, k1_175),
            Mixed(z, k1_175, k1_501 - k0_899 + k1_175 - k0_390) };
    } else {
        const __m256i z
            = Pairs<upper>(_mm256_add_epi16(x.at[7], x.at[3]), _mm256_add_epi16(x.at[5], x.at[1]));
        const __m256i z3 = Mixed(z, k1_175 - k1_961, k1_175), z4 = Mixed(z, k1_175, k1_175 - k0_390);
        const __m256i a = Pairs<upper>(x.at[7], x.at[1]), b = Pairs<upper>(x.at[5], x.at[3]);
        return { _mm256_add_epi32(Mixed(a, k0_298 - k0_899, -k0_899), z3),
            _mm256_add_epi32(Mixed(b, k2_053 - k2_562, -k2_562), z4),
            _mm256_add_epi32(Mixed(b, -k2_562, k3_072 - k2_562), z3),
            _mm256_add_epi32(Mixed(a, -k0_899, k1_501 - k0_899), z4) };
    }
}

// One half of the numbers of all rows, transformed, as 32 bits.
template<bool few, bool upper, int shift>
FOR_AVX2 Rows Half(const Rows& x)
{
    const __m256i round = _mm256_set1_epi32(1 << (shift - 1));
    const __m256i c26 = Pairs<upper>(x.at[2], few ? _mm256_setzero_si256() : x.at[6]);
    const __m256i even2 = Mixed(c26, k0_541, k0_541 - k1_847), even3 = Mixed(c26, k0_541 + k0_765, k0_541);
    const __m256i sum = Raised<upper>(few ? x.at[0] : _mm256_add_epi16(x.at[0], x.at[4]));
    const __m256i difference = few ? sum : Raised<upper>(_mm256_sub_epi16(x.at[0], x.at[4]));
    const __m256i even0 = _mm256_add_epi32(sum, round), even1 = _mm256_add_epi32(difference, round);
    const __m256i e0 = _mm256_add_epi32(even0, even3), e3 = _mm256_sub_epi32(even0, even3),
                  e1 = _mm256_add_epi32(even1, even2), e2 = _mm256_sub_epi32(even1, even2);
    const Odd odd = OddPart<few, upper>(x);
    return { { _mm256_srai_epi32(_mm256_add_epi32(e0, odd.at3), shift),
        _mm256_srai_epi32(_mm256_add_epi32(e1, odd.at2), shift),
        _mm256_srai_epi32(_mm256_add_epi32(e2, odd.at1), shift),
        _mm256_srai_epi32(_mm256_add_epi32(e3, odd.at0), shift),
        _mm256_srai_epi32(_mm256_sub_epi32(e3, odd.at0), shift),
        _mm256_srai_epi32(_mm256_sub_epi32(e2, odd.at1), shift),
        _mm256_srai_epi32(_mm256_sub_epi32(e1, odd.at2), shift),
        _mm256_srai_epi32(_mm256_sub_epi32(e0, odd.at3), shift) } };
}

template<bool few, int shift>
FOR_AVX2 void Pass(Rows& x)
{
    const Rows lower = Half<few, false, shift>(x), upper = Half<few, true, shift>(x);
    for (std::size_t i = 0; i < 8; ++i)
        x.at[i] = _mm256_packs_epi32(lower.at[i], upper.at[i]);
}

// Rows to columns, of both blocks.
FOR_AVX2 void Transpose(Rows& x)
{
    Rows a;
    for (std::size_t i = 0; i < 4; ++i) { // rows i and i + 4
        a.at[2 * i] = _mm256_unpacklo_epi16(x.at[i], x.at[i + 4]);
        a.at[2 * i + 1] = _mm256_unpackhi_epi16(x.at[i], x.at[i + 4]);
    }
    Rows b;
    for (std::size_t i = 0; i < 4; ++i) { // of the even rows, then of the odd ones
        b.at[2 * i] = _mm256_unpacklo_epi16(a.at[i], a.at[i + 4]);
        b.at[2 * i + 1] = _mm256_unpackhi_epi16(a.at[i], a.at[i + 4]);
    }
    for (std::size_t i = 0; i < 4; ++i) {
        x.at[2 * i] = _mm256_unpacklo_epi16(b.at[i], b.at[i + 4]);
        x.at[2 * i + 1] = _mm256_unpackhi_epi16(b.at[i], b.at[i + 4]);
    }
}

// The samples of two rows of each block.
struct TwoRows {
    __m256i bytes;

    FOR_AVX2 void Write(
        const std::array<std::uint8_t*, 2>& targets, std::size_t offset, std::size_t stride) const
    {
        const __m128i first = _mm256_castsi256_si128(bytes), second = _mm256_extracti128_si256(bytes, 1);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(targets[1] + offset), second);
        _mm_storeh_pd(reinterpret_cast<double*>(targets[1] + offset + stride), _mm_castsi128_pd(second));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(targets[0] + offset), first);
        _mm_storeh_pd(reinterpret_cast<double*>(targets[0] + offset + stride), _mm_castsi128_pd(first));
    }
};

// Columns of differences from the middle grey, back to rows and to bytes.
FOR_AVX2 void WriteSamples(
    const Rows& columns, const std::array<std::uint8_t*, 2>& targets, std::size_t stride)
{
    const __m256i grey = _mm256_set1_epi8(static_cast<char>(0x80));
    __m256i c[4]; // columns i and i + 4
    for (std::size_t i = 0; i < 4; ++i)
        c[i] = _mm256_xor_si256(_mm256_packs_epi16(columns.at[i], columns.at[i + 4]), grey);
    const __m256i left02 = _mm256_unpacklo_epi8(c[0], c[2]), right02 = _mm256_unpackhi_epi8(c[0], c[2]),
                  left13 = _mm256_unpacklo_epi8(c[1], c[3]), right13 = _mm256_unpackhi_epi8(c[1], c[3]);
    const __m256i leftTop = _mm256_unpacklo_epi8(left02, left13),
                  leftBottom = _mm256_unpackhi_epi8(left02, left13),
                  rightTop = _mm256_unpacklo_epi8(right02, right13),
                  rightBottom = _mm256_unpackhi_epi8(right02, right13);
    const std::array<TwoRows, 4> rows { { { _mm256_unpacklo_epi32(leftTop, rightTop) },
        { _mm256_unpackhi_epi32(leftTop, rightTop) }, { _mm256_unpacklo_epi32(leftBottom, rightBottom) },
        { _mm256_unpackhi_epi32(leftBottom, rightBottom) } } };
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].Write(targets, 2 * i * stride, stride);
}

// A row of a table, for both blocks.
FOR_AVX2 __m256i Twice(const void* row)
{
    return _mm256_broadcastsi128_si256(_mm_load_si128(static_cast<const __m128i*>(row)));
}

// Rows of coefficients, which become 0, multiplied. False when one is beyond its limit.
template<std::size_t count>
FOR_AVX2 bool TakeRows(
    Rows& x, std::int16_t* first, std::int16_t* second, const QuantisationTable& quantisation)
{
    __m256i beyond = _mm256_setzero_si256();
    for (std::size_t i = 0; i < count; ++i) {
        auto* const one = reinterpret_cast<__m128i*>(first + 8 * i);
        auto* const two = reinterpret_cast<__m128i*>(second + 8 * i);
        const __m256i row = _mm256_inserti128_si256(_mm256_castsi128_si256(*one), *two, 1);
        *one = *two = _mm_setzero_si128();
        beyond = _mm256_or_si256(
            beyond, _mm256_cmpgt_epi16(_mm256_abs_epi16(row), Twice(quantisation.limits.data() + 8 * i)));
        x.at[i] = _mm256_mullo_epi16(row, Twice(quantisation.factors.data() + 8 * i));
    }
    return _mm256_testz_si256(beyond, beyond) != 0;
}

template<bool few>
[[gnu::target("avx2")]] bool TransformBlocks(std::int16_t* first, std::int16_t* second,
    const std::array<std::uint8_t*, 2>& targets, std::size_t stride, const QuantisationTable& quantisation)
{
    Rows x {};
    const bool within = TakeRows < few ? 4 : 8 > (x, first, second, quantisation);
    Pass<few, kFirstShift>(x);
    Transpose(x);
    Pass<few, kSecondShift>(x);
    WriteSamples(x, targets, stride);
    return within;
}

#undef FOR_AVX2

// The inverse DCT of a block whose only non-zero coefficient is DC: an even area.
void FillBlock(std::int16_t& coefficient, std::uint8_t* target, std::size_t stride, unsigned factor)
{
    const int raised
        = std::exchange(coefficient, std::int16_t { 0 }) * static_cast<int>(factor) * (1 << kKeptBits);
    const int sample = std::clamp(128 + ((raised + (1 << (kKeptBits + 2))) >> (kKeptBits + 3)), 0, 255);
    for (std::size_t row = 0; row < 8; ++row)
        std::memset(target + row * stride, sample, 8);
}

bool FillBlocks(std::int16_t* first, std::int16_t* second, const std::array<std::uint8_t*, 2>& targets,
    std::size_t stride, const QuantisationTable& quantisation)
{
    const int limit = quantisation.limits[0];
    const bool within = std::abs(*first) <= limit && std::abs(*second) <= limit;
    FillBlock(*second, targets[1], stride, quantisation.factors[0]);
    FillBlock(*first, targets[0], stride, quantisation.factors[0]);
    return within;
}

} // namespace

bool IdctPair::Transform(const QuantisationTable& quantisation, std::size_t stride) noexcept
{
    if (!Full())
        targets[1] = targets[0]; // the first block's samples are written last
    std::int16_t *const first = blocks[0].data(), *const second = blocks[1].data();
    const bool within = mostCoefficients == 1 ? FillBlocks(first, second, targets, stride, quantisation)
        : mostCoefficients <= kFewCoefficients
        ? TransformBlocks<true>(first, second, targets, stride, quantisation)
        : TransformBlocks<false>(first, second, targets, stride, quantisation);
    count = 0;
    mostCoefficients = 0;
    return within;
}

} // namespace veltrane::imaging::jpeg::baseline
