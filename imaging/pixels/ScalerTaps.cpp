// The scaler where few pixels are averaged. Hardly any of them are covered whole then, so that each is
// weighed by its share, downwards first and then across, in 16 bits.

#include "imaging/pixels/ScalerTaps.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>
#ifdef __x86_64__
#include <emmintrin.h>
#endif

#include "imaging/pixels/ScalerSums.h"

namespace veltrane::imaging::scaler {

namespace {

constexpr double kMostStep = 4; // measured: of more rows most are whole, and quicker summed than weighed
constexpr int kMostTaps = 6;
constexpr int kWhole = 65536;

// The pixels that each target pixel covers along one axis, and the share of it that each of them fills.
struct Taps {
    int each = 0; // taps of a target pixel, an even number; the last may weigh nothing and lie outside
    std::vector<int> first;
    std::vector<std::uint16_t> weights; // in 65536ths
};

// Rounds where shares meet rather than the shares themselves: so they always make up the whole. The picture's
// last pixel gets all that is left, whatever the floats say: nothing is ever read beyond it.
void AddTaps(Taps& taps, double from, double step, int limit)
{
    const int first = std::clamp(static_cast<int>(std::floor(from)), 0, limit - 1);
    int filled = 0;
    for (int i = first; i < first + taps.each; ++i) {
        const double covered = i + 1 < limit ? (i + 1 - from) / step : 1;
        const int upTo = static_cast<int>(std::lround(std::min(covered, 1.0) * kWhole));
        taps.weights.push_back(static_cast<std::uint16_t>(std::min(upTo - filled, kWhole - 1)));
        filled = upTo;
    }
    taps.first.push_back(first);
}

// Those of `count` target pixels for the part of a side that begins at `from` and is `length` long.
Taps TapsOf(double from, double length, int count, int limit)
{
    const double step = length / count;
    Taps taps { (static_cast<int>(step) + 3) / 2 * 2, {}, {} };
    taps.first.reserve(static_cast<std::size_t>(count));
    taps.weights.reserve(static_cast<std::size_t>(count) * static_cast<std::size_t>(taps.each));
    for (int i = 0; i < count; ++i)
        AddTaps(taps, from + length * i / count, step, limit);
    return taps;
}

// Adds value * weight / 65536.
VELTRANE_INLINE void AddShare(const Words8& value, const Words8& weight, Words8& sum) noexcept
{
#ifdef __x86_64__
    sum += reinterpret_cast<Words8>(
        _mm_mulhi_epu16(reinterpret_cast<__m128i>(value), reinterpret_cast<__m128i>(weight)));
#else
    const auto values = reinterpret_cast<Pairs4>(value), weights = reinterpret_cast<Pairs4>(weight);
    const Pairs4 even = (values & 0xFFFF) * (weights & 0xFFFF) >> 16;
    const Pairs4 odd = (values >> 16) * (weights >> 16) & 0xFFFF0000;
    sum += reinterpret_cast<Words8>(even | odd);
#endif
}

// The channels of four pixels, in 256ths: red and blue, then green and alpha.
struct Channels {
    Words8 low {};
    Words8 high {};
};

struct OpaquePixels {
    VELTRANE_INLINE static void Spread(const Words8& pixels, Channels& channels) noexcept
    {
        channels.low = pixels << 8;
        channels.high = pixels & 0xFF00;
    }
};

// Colours are weighted by their alpha, alpha by 255.
struct AlphaPixels {
    VELTRANE_INLINE static void Spread(const Words8& pixels, Channels& channels) noexcept
    {
        const Words8 top = pixels >> 8;
        const Words8 alpha = __builtin_shufflevector(top, top, 1, 1, 3, 3, 5, 5, 7, 7);
        const Words8 low = (pixels & 0xFF) * alpha;
        const Words8 high = (top | Words8 { 0, 255, 0, 255, 0, 255, 0, 255 }) * alpha;
        // From 255ths to 256ths, an opaque pixel's exactly.
        channels.low = low + ((low + 255) >> 8);
        channels.high = high + ((high + 255) >> 8);
    }
};

// A row of the source, and how much of a target row it fills.
struct RowShare {
    Words8 weight {};
    const std::uint8_t* row = nullptr;
};

// The rows that make up a target row.
struct Rows {
    RowShare shares[kMostTaps];
    std::size_t count = 0;
};

// Has rows as pixels: the picture's own, or made of its indices and kept while the same target row needs
// them.
class PixelRows {
public:
    explicit PixelRows(const Bitmap& source) : source(source)
    {
        if (source.Indices(0) != nullptr)
            made.resize(kMostTaps * source.Stride());
    }

    const std::uint8_t* Row(int y)
    {
        if (made.empty())
            return source.Row(y);
        const auto place = static_cast<std::size_t>(y % kMostTaps);
        std::uint8_t* const row = made.data() + place * source.Stride();
        if (std::exchange(held[place], y) != y)
            source.CopyRow(y, row);
        return row;
    }

private:
    const Bitmap& source;
    std::vector<std::uint8_t> made;
    int held[kMostTaps] { -1, -1, -1, -1, -1, -1 }; // the rows that stand there
};

// Those of a target row, each from column `left` on.
Rows RowsOf(PixelRows& source, const Taps& down, std::size_t target, int left)
{
    Rows rows;
    const auto each = static_cast<std::size_t>(down.each);
    for (std::size_t i = 0; i < each; ++i) {
        if (const std::uint16_t weight = down.weights[target * each + i]; weight != 0)
            rows.shares[rows.count++] = { Words8 {} + weight,
                source.Row(down.first[target] + static_cast<int>(i)) + left * kChannels };
    }
    return rows;
}

// Averages four columns, of which `bytes` are there, into four words each: red, blue, green, alpha.
template<class Pixels>
VELTRANE_INLINE void AverageBlock(
    const Rows& rows, std::size_t offset, std::size_t bytes, std::uint16_t* columns) noexcept
{
    const auto lost = static_cast<std::uint16_t>(rows.count / 2); // each share is cut off, by half on average
    Channels sums { Words8 {} + lost, Words8 {} + lost };
    for (std::size_t i = 0; i < rows.count; ++i) {
        Words8 pixels {};
        std::memcpy(&pixels, rows.shares[i].row + offset, bytes);
        Channels channels;
        Pixels::Spread(pixels, channels);
        AddShare(channels.low, rows.shares[i].weight, sums.low);
        AddShare(channels.high, rows.shares[i].weight, sums.high);
    }
    const auto low = reinterpret_cast<Pairs4>(sums.low), high = reinterpret_cast<Pairs4>(sums.high);
    const Pairs4 left = __builtin_shufflevector(low, high, 0, 4, 1, 5);
    const Pairs4 right = __builtin_shufflevector(low, high, 2, 6, 3, 7);
    std::memcpy(columns + offset, &left, sizeof left);
    std::memcpy(columns + offset + sizeof left / sizeof *columns, &right, sizeof right);
}

template<class Pixels>
void AverageRows(const Rows& rows, std::size_t bytes, std::uint16_t* columns) noexcept
{
    constexpr std::size_t kBlock = sizeof(Words8);
    if (bytes < kBlock) {
        AverageBlock<Pixels>(rows, 0, bytes, columns);
        return;
    }
    for (std::size_t offset = 0; offset < bytes; offset += kBlock)
        AverageBlock<Pixels>(rows, std::min(offset, bytes - kBlock), kBlock, columns);
}

// What a row of target pixels takes from a row of columns.
struct Across {
    int left = 0; // the first column that is needed, from which on the others are counted
    int count = 0; // how many are needed
    int pairs = 0; // of columns, for each target pixel
    std::vector<std::size_t> first; // the word where the columns of a target pixel begin
    std::vector<std::uint16_t> weights; // one for each word
};

// Target pixels are made two at a time: a last one without a neighbour gets one that weighs nothing.
Across AcrossOf(const Taps& taps, int limit)
{
    const int left = taps.first.front();
    Across across { left, std::min(taps.first.back() + taps.each, limit) - left, taps.each / 2, {}, {} };
    for (const int first : taps.first)
        across.first.push_back(static_cast<std::size_t>(first - left) * kChannels);
    for (const std::uint16_t weight : taps.weights)
        across.weights.insert(across.weights.end(), kChannels, weight);
    across.first.push_back(0);
    across.weights.resize(across.weights.size() + static_cast<std::size_t>(taps.each) * kChannels);
    return across;
}

// The sums of the even and of the odd columns that a target pixel takes.
VELTRANE_INLINE void SumPairs(
    const std::uint16_t* columns, const std::uint16_t* weights, int pairs, Words8& sum) noexcept
{
    for (int i = 0; i < pairs; ++i) {
        Words8 two, weight;
        std::memcpy(&two, columns + i * 2 * kChannels, sizeof two);
        std::memcpy(&weight, weights + i * 2 * kChannels, sizeof weight);
        AddShare(two, weight, sum);
    }
}

// Rounds two pixels, each of them the words red, blue, green, alpha, to bytes in their order.
VELTRANE_INLINE void Round(const Words8& pixels, Pairs4& bytes) noexcept
{
    const auto words = reinterpret_cast<Longs2>(pixels >> 8);
    bytes = reinterpret_cast<Pairs4>(words | words >> 24);
    bytes = __builtin_shufflevector(bytes, bytes, 0, 2, 0, 2);
}

template<int Pairs>
void WriteTargetRow(const Across& across, const std::uint16_t* columns, int width, std::uint8_t* out) noexcept
{
    constexpr int kWords = Pairs * 2 * kChannels;
    constexpr std::uint16_t kHalf = 128 + Pairs - 1; // and what the shares have lost on average
    const std::uint16_t* weights = across.weights.data();
    const std::size_t* first = across.first.data();
    for (int x = 0; x < width; x += 2, first += 2, weights += 2 * kWords, out += 2 * kChannels) {
        Words8 left {}, right {};
        SumPairs(columns + first[0], weights, Pairs, left);
        SumPairs(columns + first[1], weights + kWords, Pairs, right);
        Pairs4 bytes;
        Round(__builtin_shufflevector(left, right, 0, 1, 2, 3, 8, 9, 10, 11)
                + __builtin_shufflevector(left, right, 4, 5, 6, 7, 12, 13, 14, 15) + kHalf,
            bytes);
        std::memcpy(out, &bytes, x + 1 < width ? 2 * kChannels : kChannels);
    }
}

using Averaging = void (*)(const Rows&, std::size_t, std::uint16_t*) noexcept;
using Writing = void (*)(const Across&, const std::uint16_t*, int, std::uint8_t*) noexcept;

Writing WritingFor(int pairs)
{
    static constexpr Writing kByPairs[] = { WriteTargetRow<1>, WriteTargetRow<2>, WriteTargetRow<3> };
    return kByPairs[pairs - 1];
}

} // namespace

bool IsSmallStep(const SourceArea& area, const ScaledPixels& target) noexcept
{
    return area.width < kMostStep * target.width && area.height < kMostStep * target.height;
}

void ScaleByTaps(const Bitmap& source, const SourceArea& area, const ScaledPixels& target)
{
    const Taps down = TapsOf(area.y, area.height, target.height, source.Height());
    const Across across = AcrossOf(TapsOf(area.x, area.width, target.width, source.Width()), source.Width());
    // Taps that weigh nothing and blocks that are not full reach beyond the last column.
    std::vector<std::uint16_t> columns(static_cast<std::size_t>(across.count + kMostTaps) * kChannels);
    const std::size_t bytes = static_cast<std::size_t>(across.count) * kChannels;
    const Averaging average = source.Opaque() ? AverageRows<OpaquePixels> : AverageRows<AlphaPixels>;
    const Writing write = WritingFor(across.pairs);
    PixelRows rows(source);
    std::uint8_t* out = target.rows;
    for (std::size_t y = 0; y < down.first.size(); ++y, out += target.stride) {
        average(RowsOf(rows, down, y, across.left), bytes, columns.data());
        write(across, columns.data(), target.width, out);
    }
}

} // namespace veltrane::imaging::scaler
