#include "imaging/jpeg/baseline/RgbaRows.h"

#include <cstring>
#include <iterator>

#include <immintrin.h>

namespace veltrane::imaging::jpeg::baseline {

namespace {

constexpr std::size_t kPixels = 32; // at a time
constexpr std::size_t kBytes = 4 * kPixels;

// 16-bit numbers of the even pixels and of the odd ones.
struct Words {
    __m256i even, odd;
};

#define FOR_AVX2 [[gnu::target("avx2"), gnu::always_inline]] inline

FOR_AVX2 Words Parted(const std::uint8_t* samples)
{
    const __m256i all = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(samples));
    return { _mm256_and_si256(all, _mm256_set1_epi16(0xFF)), _mm256_srli_epi16(all, 8) };
}

FOR_AVX2 __m256i Widened(const std::uint8_t* samples)
{
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(samples)));
}

FOR_AVX2 __m256i Thrice(__m256i words)
{
    return _mm256_add_epi16(words, _mm256_add_epi16(words, words));
}

// Three quarters of the nearer sample and one of the other, which is to the left of even pixels and to the
// right of odd ones.
template<int shift, int evenRound, int oddRound>
FOR_AVX2 Words Upsampled(__m256i left, __m256i here, __m256i right)
{
    const __m256i thrice = Thrice(here), even = _mm256_add_epi16(thrice, _mm256_set1_epi16(evenRound)),
                  odd = _mm256_add_epi16(thrice, _mm256_set1_epi16(oddRound));
    return { _mm256_srli_epi16(_mm256_add_epi16(even, left), shift),
        _mm256_srli_epi16(_mm256_add_epi16(odd, right), shift) };
}

// Three times the nearer row and once the other.
FOR_AVX2 __m256i Column(const ChromaRow& row, std::ptrdiff_t sample)
{
    return _mm256_add_epi16(Thrice(Widened(row.near + sample)), Widened(row.far + sample));
}

// The chroma of the 32 pixels from `pixel` on, from -128 to 127.
template<Chroma chroma>
FOR_AVX2 Words ChromaAt(const ChromaRow& row, std::size_t pixel)
{
    Words words;
    if constexpr (chroma == Chroma::Full) {
        words = Parted(row.near + pixel);
    } else if constexpr (chroma == Chroma::HalfAcross) {
        const std::uint8_t* const near = row.near + pixel / 2;
        words = Upsampled<2, 1, 2>(Widened(near - 1), Widened(near), Widened(near + 1));
    } else {
        const auto sample = static_cast<std::ptrdiff_t>(pixel / 2);
        words = Upsampled<4, 8, 7>(Column(row, sample - 1), Column(row, sample), Column(row, sample + 1));
    }
    const __m256i middle = _mm256_set1_epi16(128);
    return { _mm256_sub_epi16(words.even, middle), _mm256_sub_epi16(words.odd, middle) };
}

// words * factor / 65536, rounded.
FOR_AVX2 __m256i Times(__m256i words, int factor)
{
    const __m256i twice
        = _mm256_mulhi_epi16(_mm256_add_epi16(words, words), _mm256_set1_epi16(static_cast<short>(factor)));
    return _mm256_srai_epi16(_mm256_add_epi16(twice, _mm256_set1_epi16(1)), 1);
}

// The contribution of each pair of Cb and Cr to green, as 32 bits.
FOR_AVX2 __m256i GreenOf(__m256i pairs)
{
    constexpr int kBlue = -22554, kRed = 65536 - 46802;
    const __m256i factors
        = _mm256_set1_epi32(static_cast<int>(static_cast<std::uint32_t>(kRed) << 16 | (kBlue & 0xFFFF)));
    return _mm256_srai_epi32(
        _mm256_add_epi32(_mm256_madd_epi16(pairs, factors), _mm256_set1_epi32(1 << 15)), 16);
}

struct Colours {
    __m256i red, green, blue;
};

// The factors 1.402 of Cr and 1.772 of Cb do not fit 16 bits, so their whole parts are added instead. Green
// takes both at once, since they are rounded together.
FOR_AVX2 Colours ColoursOf(__m256i luma, __m256i blue, __m256i red)
{
    constexpr int kRed = 91881 - 65536, kBlue = 116130 - 2 * 65536;
    const __m256i green = _mm256_packs_epi32(
        GreenOf(_mm256_unpacklo_epi16(blue, red)), GreenOf(_mm256_unpackhi_epi16(blue, red)));
    return { _mm256_add_epi16(_mm256_add_epi16(luma, red), Times(red, kRed)),
        _mm256_add_epi16(_mm256_sub_epi16(luma, red), green),
        _mm256_add_epi16(_mm256_add_epi16(luma, _mm256_add_epi16(blue, blue)), Times(blue, kBlue)) };
}

// Bytes in the order of the pixels.
FOR_AVX2 __m256i Joined(__m256i even, __m256i odd)
{
    const __m256i order
        = _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15));
    return _mm256_shuffle_epi8(_mm256_packus_epi16(even, odd), order);
}

FOR_AVX2 void WritePixels(__m256i red, __m256i green, __m256i blue, std::uint8_t* rgba)
{
    const __m256i alpha = _mm256_set1_epi8(-1);
    const __m256i rg0 = _mm256_unpacklo_epi8(red, green), rg1 = _mm256_unpackhi_epi8(red, green),
                  ba0 = _mm256_unpacklo_epi8(blue, alpha), ba1 = _mm256_unpackhi_epi8(blue, alpha);
    const __m256i fours[] { _mm256_unpacklo_epi16(rg0, ba0), _mm256_unpackhi_epi16(rg0, ba0),
        _mm256_unpacklo_epi16(rg1, ba1), _mm256_unpackhi_epi16(rg1, ba1) }; // of both halves of the pixels
    auto* const out = reinterpret_cast<__m128i*>(rgba);
    for (std::size_t i = 0; i < std::size(fours); ++i) {
        _mm_storeu_si128(out + i, _mm256_castsi256_si128(fours[i]));
        _mm_storeu_si128(out + i + 4, _mm256_extracti128_si256(fours[i], 1));
    }
}

template<Chroma chroma>
FOR_AVX2 void WriteSome(const std::uint8_t* luma, const std::array<ChromaRow, 2>& blueAndRed,
    std::size_t pixel, std::uint8_t* rgba)
{
    if constexpr (chroma == Chroma::None) {
        const __m256i grey = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(luma + pixel));
        WritePixels(grey, grey, grey, rgba);
    } else {
        const Words y = Parted(luma + pixel), blue = ChromaAt<chroma>(blueAndRed[0], pixel),
                    red = ChromaAt<chroma>(blueAndRed[1], pixel);
        const Colours even = ColoursOf(y.even, blue.even, red.even),
                      odd = ColoursOf(y.odd, blue.odd, red.odd);
        WritePixels(
            Joined(even.red, odd.red), Joined(even.green, odd.green), Joined(even.blue, odd.blue), rgba);
    }
}

template<Chroma chroma>
[[gnu::target("avx2")]] void WriteRow(const std::uint8_t* luma, const std::array<ChromaRow, 2>& blueAndRed,
    std::uint8_t* rgba, std::size_t pixels)
{
    std::size_t pixel = 0;
    for (; pixel + kPixels <= pixels; pixel += kPixels)
        WriteSome<chroma>(luma, blueAndRed, pixel, rgba + 4 * pixel);
    if (pixel == pixels)
        return;
    std::array<std::uint8_t, kBytes> last;
    WriteSome<chroma>(luma, blueAndRed, pixel, last.data());
    std::memcpy(rgba + 4 * pixel, last.data(), 4 * (pixels - pixel));
}

#undef FOR_AVX2

} // namespace

void WriteRgbaRow(Chroma chroma, const std::uint8_t* luma, const std::array<ChromaRow, 2>& blueAndRed,
    std::uint8_t* rgba, std::size_t pixels)
{
    switch (chroma) {
    case Chroma::None: return WriteRow<Chroma::None>(luma, blueAndRed, rgba, pixels);
    case Chroma::Full: return WriteRow<Chroma::Full>(luma, blueAndRed, rgba, pixels);
    case Chroma::HalfAcross: return WriteRow<Chroma::HalfAcross>(luma, blueAndRed, rgba, pixels);
    case Chroma::HalfBoth: return WriteRow<Chroma::HalfBoth>(luma, blueAndRed, rgba, pixels);
    }
}

} // namespace veltrane::imaging::jpeg::baseline
