#include "platform/Scaler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <span>
#include <vector>

#include "platform/Exceptions.h"

namespace veltrane {

namespace {

using codecs::Bitmap;

constexpr int kChannels = 4;

// Columns worked on at a time: sums and rows of so many fit the fastest cache.
constexpr int kStripPixels = 1024;

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

// a * b / 255, rounded, in both 16-bit halves of `pair` at once.
std::uint32_t TimesShare(std::uint32_t pair, std::uint32_t share) noexcept
{
    const std::uint32_t product = (pair & 0x00FF00FFu) * share + 0x00800080u;
    return ((product + ((product >> 8) & 0x00FF00FFu)) >> 8) & 0x00FF00FFu;
}

void Premultiply(
    const std::uint8_t* __restrict from, std::uint8_t* __restrict to, std::size_t pixels) noexcept
{
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t* const in = from + i * kChannels;
        std::uint8_t* const out = to + i * kChannels;
        const std::uint32_t share = in[3];
        const std::uint32_t redBlue = TimesShare(in[0] | static_cast<std::uint32_t>(in[2]) << 16, share);
        const std::uint32_t green = TimesShare(in[1], share);
        out[0] = static_cast<std::uint8_t>(redBlue);
        out[1] = static_cast<std::uint8_t>(green);
        out[2] = static_cast<std::uint8_t>(redBlue >> 16);
        out[3] = in[3];
    }
}

// The next loops have the shape that compilers turn into vector code.

void AddRow(std::uint16_t* __restrict sums, const std::uint8_t* __restrict row, std::size_t bytes) noexcept
{
    for (std::size_t i = 0; i < bytes; ++i)
        sums[i] = static_cast<std::uint16_t>(sums[i] + row[i]);
}

void AddFourRows(std::uint16_t* __restrict sums, const std::array<const std::uint8_t*, 4>& rows,
    std::size_t bytes) noexcept
{
    const std::uint8_t* const __restrict a = rows[0];
    const std::uint8_t* const __restrict b = rows[1];
    const std::uint8_t* const __restrict c = rows[2];
    const std::uint8_t* const __restrict d = rows[3];
    for (std::size_t i = 0; i < bytes; ++i)
        sums[i] = static_cast<std::uint16_t>(sums[i] + a[i] + b[i] + c[i] + d[i]);
}

void SetShare(
    float* __restrict columns, const std::uint8_t* __restrict row, float share, std::size_t bytes) noexcept
{
    for (std::size_t i = 0; i < bytes; ++i)
        columns[i] = share * static_cast<float>(row[i]);
}

void AddShare(
    float* __restrict columns, const std::uint8_t* __restrict row, float share, std::size_t bytes) noexcept
{
    for (std::size_t i = 0; i < bytes; ++i)
        columns[i] += share * static_cast<float>(row[i]);
}

void AddSums(float* __restrict columns, const std::uint16_t* __restrict sums, std::size_t bytes) noexcept
{
    for (std::size_t i = 0; i < bytes; ++i)
        columns[i] += static_cast<float>(sums[i]);
}

// A band of neighbouring columns of the source, whose rows are summed down to one row of columns.
class Strip {
public:
    Strip(const Bitmap& source, int firstColumn, int columnCount)
        : source(source)
        , offset(static_cast<std::size_t>(firstColumn) * kChannels)
        , bytes(static_cast<std::size_t>(columnCount) * kChannels)
        , columns(bytes)
        , sums(bytes)
    {
        if (!source.Opaque()) {
            for (auto& row : premultiplied)
                row.resize(bytes);
        }
    }

    // Adds the rows of the span up, each column by itself.
    [[nodiscard]] const float* Add(const Span& rows)
    {
        SetShare(columns.data(), Row(rows.first, 0), rows.firstShare, bytes);
        for (int at = rows.first + 1; at < rows.last; at += kRowsInSum)
            AddWholeRows(at, std::min(at + kRowsInSum, rows.last));
        if (rows.lastShare > 0)
            AddShare(columns.data(), Row(rows.last, 0), rows.lastShare, bytes);
        return columns.data();
    }

private:
    void AddWholeRows(int from, int to)
    {
        std::fill(sums.begin(), sums.end(), std::uint16_t { 0 });
        for (; from + 4 <= to; from += 4)
            AddFourRows(
                sums.data(), { Row(from, 0), Row(from + 1, 1), Row(from + 2, 2), Row(from + 3, 3) }, bytes);
        for (; from < to; ++from)
            AddRow(sums.data(), Row(from, 0), bytes);
        AddSums(columns.data(), sums.data(), bytes);
    }

    // This band's part of the row, premultiplied; valid until the same slot is asked for again.
    [[nodiscard]] const std::uint8_t* Row(int y, std::size_t slot)
    {
        const std::uint8_t* const row = source.Row(y) + offset;
        if (source.Opaque())
            return row;
        Premultiply(row, premultiplied[slot].data(), bytes / kChannels);
        return premultiplied[slot].data();
    }

    const Bitmap& source;
    std::size_t offset, bytes;
    std::vector<float> columns;
    std::vector<std::uint16_t> sums;
    std::array<std::vector<std::uint8_t>, 4> premultiplied;
};

// Sums the columns of a span, and writes their average: `perPixel` is one over the area covered.
void WritePixel(const float* columns, const Span& span, int firstColumn, float perPixel, std::uint8_t* out)
{
    std::array<float, kChannels> sum {};
    const float* pixel = columns + static_cast<std::ptrdiff_t>(span.first - firstColumn) * kChannels;
    for (int c = 0; c < kChannels; ++c)
        sum[static_cast<std::size_t>(c)] = span.firstShare * pixel[c];
    for (int x = span.first + 1; x < span.last; ++x) {
        pixel += kChannels;
        for (int c = 0; c < kChannels; ++c)
            sum[static_cast<std::size_t>(c)] += pixel[c];
    }
    if (span.lastShare > 0) {
        pixel += kChannels;
        for (int c = 0; c < kChannels; ++c)
            sum[static_cast<std::size_t>(c)] += span.lastShare * pixel[c];
    }
    for (int c = 0; c < kChannels; ++c)
        out[c]
            = static_cast<std::uint8_t>(std::min(sum[static_cast<std::size_t>(c)] * perPixel + 0.5F, 255.0F));
}

// How many target columns, from `first` on, one strip serves.
std::size_t StripEnd(const std::vector<Span>& spans, std::size_t first)
{
    std::size_t end = first + 1;
    while (end < spans.size() && spans[end].last - spans[first].first < kStripPixels)
        ++end;
    return end;
}

void ScaleStrip(const Bitmap& source, std::span<const Span> across, const std::vector<Span>& down,
    float perPixel, const ScaledPixels& target, std::size_t firstTarget)
{
    const int firstColumn = across.front().first;
    Strip strip(source, firstColumn, across.back().last - firstColumn + 1);
    for (std::size_t y = 0; y < down.size(); ++y) {
        const float* const columns = strip.Add(down[y]);
        std::uint8_t* out = target.rows + y * target.stride + firstTarget * kChannels;
        for (const Span& span : across) {
            WritePixel(columns, span, firstColumn, perPixel, out);
            out += kChannels;
        }
    }
}

} // namespace

void ScaleByArea(const Bitmap& source, const SourceArea& area, const ScaledPixels& target)
try {
    const auto across = SpansOf(area.x, area.width, target.width, source.Width());
    const auto down = SpansOf(area.y, area.height, target.height, source.Height());
    const double covered = area.width / target.width * (area.height / target.height);
    for (std::size_t first = 0; first < across.size();) {
        const std::size_t end = StripEnd(across, first);
        ScaleStrip(source, std::span(across).subspan(first, end - first), down,
            static_cast<float>(1 / covered), target, first);
        first = end;
    }
} catch (const std::bad_alloc&) {
    throw OutOfMemoryException("mémoire insuffisante pour l'aperçu");
}

} // namespace veltrane
