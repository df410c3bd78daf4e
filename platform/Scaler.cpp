#include "platform/Scaler.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include "platform/Exceptions.h"

namespace veltrane {

namespace {

using codecs::Bitmap;

constexpr int kChannels = 4;

// Columns worked on at a time: their sums fit the second cache, and rows are read in long runs.
constexpr int kStripPixels = 8192;

// Whole rows that a 16-bit sum of bytes holds: 257 * 255 = 65535.
constexpr int kRowsInSum = 256;

// What one target pixel covers along one axis: `first` and `last` by a share, all between them whole.
struct Span {
    int first = 0;
    int last = 0;
    float firstShare = 0;
    float lastShare = 0; // 0 when first and last are the same
};

Span SpanBetween(double from, double to, int limit)
{
    const int first = std::clamp(static_cast<int>(std::floor(from)), 0, limit - 1);
    const int last = std::clamp(static_cast<int>(std::ceil(to)) - 1, first, limit - 1);
    if (first == last)
        return { first, last, static_cast<float>(to - from), 0 };
    return { first, last, static_cast<float>(first + 1 - from), static_cast<float>(to - last) };
}

// One span for each target pixel of an axis whose source part begins at `from` and is `length` long.
std::vector<Span> SpansOf(double from, double length, int count, int limit)
{
    std::vector<Span> spans(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        spans[static_cast<std::size_t>(i)]
            = SpanBetween(from + length * i / count, from + length * (i + 1) / count, limit);
    }
    return spans;
}

// The loops over pixels work on vectors of the compiler's own, so that one source serves every processor.
using Words16 [[gnu::vector_size(32)]] = std::uint16_t;
using Pairs8 [[gnu::vector_size(32)]] = std::uint32_t;
using Pairs4 [[gnu::vector_size(16)]] = std::uint32_t;
using Longs2 [[gnu::vector_size(16)]] = std::uint64_t;
using Counts4 [[gnu::vector_size(16)]] = std::int32_t;
using Floats4 [[gnu::vector_size(16)]] = float;
using Bytes4 [[gnu::vector_size(4)]] = std::uint8_t;

#define VELTRANE_INLINE [[gnu::always_inline]] inline

constexpr std::size_t kBlockPixels = sizeof(Words16) / kChannels;

// Sums of eight columns: a pixel is two words in memory, red and green, then blue and alpha, and each sum
// takes one half of them.
struct Block {
    Words16 low {}; // red and blue
    Words16 high {}; // green and alpha
};

// Of an opaque picture the whole words are added, and what the high halves put into them is taken off
// at the end: the low halves never sum to more than a word holds.
VELTRANE_INLINE void AddOpaque(Block& block, const Words16& pixels) noexcept
{
    block.low += pixels;
    block.high += pixels >> 8;
}

VELTRANE_INLINE void TakeHighOff(Block& block) noexcept
{
    block.low -= block.high << 8;
}

// Colours count as their product with alpha / 255, rounded.
VELTRANE_INLINE void AddPremultiplied(Block& block, const Words16& pixels) noexcept
{
    constexpr Words16 kWholeForAlpha { 0, 255, 0, 255, 0, 255, 0, 255, 0, 255, 0, 255, 0, 255, 0, 255 };
    const Words16 high = pixels >> 8;
    const Words16 alpha
        = __builtin_shufflevector(high, high, 1, 1, 3, 3, 5, 5, 7, 7, 9, 9, 11, 11, 13, 13, 15, 15);
    const Words16 lowProduct = (pixels & 0xFF) * alpha + 128;
    const Words16 highProduct = high * (alpha | kWholeForAlpha) + 128;
    block.low += (lowProduct + (lowProduct >> 8)) >> 8;
    block.high += (highProduct + (highProduct >> 8)) >> 8;
}

template<class Vector>
VELTRANE_INLINE void AddTo(std::uint16_t* sums, const Vector& more) noexcept
{
    Words16 held;
    std::memcpy(&held, sums, sizeof held);
    held += reinterpret_cast<Words16>(more);
    std::memcpy(sums, &held, sizeof held);
}

// Adds a block to the sums of its columns: four words each, red, blue, green, alpha.
VELTRANE_INLINE void Store(const Block& block, std::uint16_t* sums) noexcept
{
    const auto low = reinterpret_cast<Pairs8>(block.low);
    const auto high = reinterpret_cast<Pairs8>(block.high);
    AddTo(sums, __builtin_shufflevector(low, high, 0, 8, 1, 9, 2, 10, 3, 11));
    AddTo(sums + sizeof(Words16) / sizeof *sums,
        __builtin_shufflevector(low, high, 4, 12, 5, 13, 6, 14, 7, 15));
}

template<bool opaque>
VELTRANE_INLINE void AddTo(Block& block, const std::uint8_t* from, std::size_t bytes) noexcept
{
    Words16 pixels {};
    std::memcpy(&pixels, from, bytes);
    if constexpr (opaque)
        AddOpaque(block, pixels);
    else
        AddPremultiplied(block, pixels);
}

template<bool opaque>
VELTRANE_INLINE void Finish(Block& block, std::uint16_t* sums) noexcept
{
    if constexpr (opaque)
        TakeHighOff(block);
    Store(block, sums);
}

// Adds `count` rows, whose first pixels begin at `row`, to the sums of `pixels` columns. The sums have
// room for whole blocks. Two blocks side by side are a cache line, which is then asked for once.
template<bool opaque>
VELTRANE_INLINE void AddRows(
    std::uint16_t* sums, const std::uint8_t* row, std::size_t stride, int count, std::size_t pixels) noexcept
{
    constexpr std::size_t kAhead = 1024; // bytes; measured: reads of many rows at once outrun the processor
    constexpr std::size_t kBytes = sizeof(Words16);
    const std::size_t bytes = pixels * kChannels;
    std::size_t i = 0;
    for (; i + 2 * kBytes <= bytes; i += 2 * kBytes) {
        Block left, right;
        const std::uint8_t* at = row + i;
        for (int y = 0; y < count; ++y, at += stride) {
            __builtin_prefetch(at + kAhead);
            AddTo<opaque>(left, at, kBytes);
            AddTo<opaque>(right, at + kBytes, kBytes);
        }
        Finish<opaque>(left, sums + i);
        Finish<opaque>(right, sums + i + kBytes);
    }
    for (; i < bytes; i += kBytes) {
        Block last;
        for (int y = 0; y < count; ++y)
            AddTo<opaque>(last, row + static_cast<std::size_t>(y) * stride + i, std::min(kBytes, bytes - i));
        Finish<opaque>(last, sums + i);
    }
}

// Sums of columns on the way to a pixel: red and green, blue and alpha, twice.
struct Halves {
    Pairs4 even {};
    Pairs4 odd {};
};

VELTRANE_INLINE void AddColumns(Halves& halves, const Pairs4& two) noexcept
{
    halves.even += two & 0xFFFF;
    halves.odd += two >> 16;
}

VELTRANE_INLINE void AddColumn(Halves& halves, const std::uint16_t* column) noexcept
{
    std::uint64_t words;
    std::memcpy(&words, column, sizeof words);
    AddColumns(halves, reinterpret_cast<Pairs4>(Longs2 { words, 0 }));
}

// The four channels in their order. All columns of a row together stay below 2^31: a side has at most 32767.
VELTRANE_INLINE void ToPixel(const Halves& halves, Floats4& pixel) noexcept
{
    const Pairs4 even = halves.even + __builtin_shufflevector(halves.even, halves.even, 2, 3, 2, 3);
    const Pairs4 odd = halves.odd + __builtin_shufflevector(halves.odd, halves.odd, 2, 3, 2, 3);
    const Pairs4 sum = __builtin_shufflevector(even, odd, 0, 1, 4, 5);
    pixel = __builtin_convertvector(reinterpret_cast<Counts4>(sum), Floats4);
}

VELTRANE_INLINE void AddShareOf(const std::uint16_t* column, float share, Floats4& sum) noexcept
{
    Halves halves;
    AddColumn(halves, column);
    Floats4 pixel;
    ToPixel(halves, pixel);
    sum += pixel * share;
}

// The sum of a span's columns.
VELTRANE_INLINE void SumSpan(const std::uint16_t* columns, const Span& span, Floats4& sum) noexcept
{
    constexpr int kTwo = 2 * kChannels;
    const std::uint16_t* const first = columns + span.first * kChannels;
    const std::uint16_t* const last = columns + span.last * kChannels;
    Halves whole;
    const std::uint16_t* at = first + kChannels;
    for (; at + kTwo <= last; at += kTwo) {
        Pairs4 two;
        std::memcpy(&two, at, sizeof two);
        AddColumns(whole, two);
    }
    if (at < last)
        AddColumn(whole, at);
    ToPixel(whole, sum);
    AddShareOf(first, span.firstShare, sum);
    AddShareOf(last, span.lastShare, sum);
}

// A band of neighbouring columns of the source, and the target columns that come from it.
struct Strip {
    const Bitmap& source;
    std::span<const Span> across; // counted from the strip's first column
    std::size_t offset; // of its first byte in a row
    std::size_t pixels;
    std::vector<std::uint16_t> sums; // of rows, for each column and channel
    std::vector<Floats4> atEdge; // the row at the edge of a target row, summed over the columns
    int edgeRow = -1; // which row that is; the next target row begins with the one this one ends with
    std::vector<Floats4> total;
};

// Adds rows [from, to), at most kRowsInSum of them, up to one row of columns. Few rows are read side by
// side, because the processor fetches only so many streams ahead.
template<bool opaque>
VELTRANE_INLINE void SumRows(Strip& strip, int from, int to)
{
    constexpr int kStreams = 16;
    std::fill(strip.sums.begin(), strip.sums.end(), std::uint16_t { 0 });
    for (; from < to; from += kStreams)
        AddRows<opaque>(strip.sums.data(), strip.source.Row(from) + strip.offset, strip.source.Stride(),
            std::min(kStreams, to - from), strip.pixels);
}

template<bool opaque>
VELTRANE_INLINE void AddEdge(Strip& strip, int row, float share)
{
    if (std::exchange(strip.edgeRow, row) != row) {
        SumRows<opaque>(strip, row, row + 1);
        for (std::size_t i = 0; i < strip.across.size(); ++i)
            SumSpan(strip.sums.data(), strip.across[i], strip.atEdge[i]);
    }
    for (std::size_t i = 0; i < strip.across.size(); ++i)
        strip.total[i] += strip.atEdge[i] * share;
}

template<bool opaque>
VELTRANE_INLINE void SumTargetRow(Strip& strip, const Span& down)
{
    std::fill(strip.total.begin(), strip.total.end(), Floats4 {});
    AddEdge<opaque>(strip, down.first, down.firstShare);
    for (int from = down.first + 1; from < down.last; from += kRowsInSum) {
        SumRows<opaque>(strip, from, std::min(from + kRowsInSum, down.last));
        for (std::size_t i = 0; i < strip.across.size(); ++i) {
            Floats4 sum;
            SumSpan(strip.sums.data(), strip.across[i], sum);
            strip.total[i] += sum;
        }
    }
    if (down.last != down.first)
        AddEdge<opaque>(strip, down.last, down.lastShare);
}

// Writes the averages: `perPixel` is one over the area that a target pixel covers.
VELTRANE_INLINE void WriteTargetRow(const Strip& strip, float perPixel, std::uint8_t* out) noexcept
{
    for (const Floats4& sum : strip.total) {
        const Counts4 rounded = __builtin_convertvector(sum * perPixel + 0.5F, Counts4);
        const Bytes4 pixel = __builtin_convertvector(rounded > 255 ? 255 : rounded, Bytes4);
        std::memcpy(out, &pixel, sizeof pixel);
        out += kChannels;
    }
}

template<bool opaque>
VELTRANE_INLINE void ScaleStrip(
    Strip& strip, std::span<const Span> down, float perPixel, std::uint8_t* out, std::size_t stride)
{
    for (const Span& rows : down) {
        SumTargetRow<opaque>(strip, rows);
        WriteTargetRow(strip, perPixel, out);
        out += stride;
    }
}

using StripScaler = void (*)(Strip&, std::span<const Span>, float, std::uint8_t*, std::size_t);

// The same source for the processor that every build runs on, and for a newer one where it is there.
#ifdef __x86_64__
template<bool opaque>
[[gnu::target("avx2")]] void ScaleStripAvx2(
    Strip& strip, std::span<const Span> down, float perPixel, std::uint8_t* out, std::size_t stride)
{
    ScaleStrip<opaque>(strip, down, perPixel, out, stride);
}
#endif

template<bool opaque>
void ScaleStripAnywhere(
    Strip& strip, std::span<const Span> down, float perPixel, std::uint8_t* out, std::size_t stride)
{
    ScaleStrip<opaque>(strip, down, perPixel, out, stride);
}

StripScaler ScalerFor(bool opaque)
{
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx2") != 0)
        return opaque ? ScaleStripAvx2<true> : ScaleStripAvx2<false>;
#endif
    return opaque ? ScaleStripAnywhere<true> : ScaleStripAnywhere<false>;
}

// Behind the last target column that one strip serves, when it begins with `first`.
std::size_t StripEnd(const std::vector<Span>& spans, std::size_t first)
{
    std::size_t end = first + 1;
    while (end < spans.size() && spans[end].last - spans[first].first < kStripPixels)
        ++end;
    return end;
}

// `across` is counted from the strip's own first column afterwards.
Strip MakeStrip(const Bitmap& source, std::span<Span> across)
{
    const int firstColumn = across.front().first;
    for (Span& span : across) {
        span.first -= firstColumn;
        span.last -= firstColumn;
    }
    const auto pixels = static_cast<std::size_t>(across.back().last) + 1;
    return { source, across, static_cast<std::size_t>(firstColumn) * kChannels, pixels,
        std::vector<std::uint16_t>((pixels + kBlockPixels) * kChannels), std::vector<Floats4>(across.size()),
        -1, std::vector<Floats4>(across.size()) };
}

} // namespace

void ScaleByArea(const Bitmap& source, const SourceArea& area, const ScaledPixels& target)
try {
    auto across = SpansOf(area.x, area.width, target.width, source.Width());
    const auto down = SpansOf(area.y, area.height, target.height, source.Height());
    const double covered = area.width / target.width * (area.height / target.height);
    const StripScaler scale = ScalerFor(source.Opaque());
    for (std::size_t first = 0; first < across.size();) {
        const std::size_t end = StripEnd(across, first);
        Strip strip = MakeStrip(source, std::span(across).subspan(first, end - first));
        scale(strip, down, static_cast<float>(1 / covered), target.rows + first * kChannels, target.stride);
        first = end;
    }
} catch (const std::bad_alloc&) {
    throw OutOfMemoryException("mémoire insuffisante pour l'aperçu");
}

} // namespace veltrane
