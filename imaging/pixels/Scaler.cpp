#include "imaging/pixels/Scaler.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <iterator>
#include <span>
#include <vector>

#include "imaging/bits/Processor.h"
#include "imaging/pixels/ScalerSums.h"
#include "imaging/pixels/ScalerTaps.h"

namespace veltrane::imaging {

namespace {

using namespace scaler;

// Whole rows walked side by side. More of them, of a picture whose rows are a power of two apart, would
// push each other out of the cache.
constexpr int kRowsInGroup = 14;

// Columns summed at a time: two blocks side by side are a cache line, which is then asked for once.
constexpr int kLinePixels = 2 * kBlockBytes / kChannels;

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

// A row at the edge of a target row, which covers only a part of it.
struct Edge {
    int row = 0;
    std::uint16_t weight = 0; // in 65536ths of a whole row
};

// Rows that go into one row of sums: the whole ones [from, to), at most kRowsInGroup, and the edges.
struct Group {
    int from = 0;
    int to = 0;
    Edge edges[2];

    // Sums count a row 2^ScaleBits-fold, as often as 16 bits allow, for the sake of the edges' shares.
    [[nodiscard]] int ScaleBits() const
    {
        return 8 - static_cast<int>(std::bit_width(static_cast<unsigned>(to - from + 1)));
    }
};

// The pixels of a group's rows.
struct RowsAt {
    const std::uint8_t* whole = nullptr; // the rows that count whole, one below the other
    const std::uint8_t* edges[2] {};
    std::size_t stride = 0;
};

// Has the rows of a group as pixels: the picture's own, or made of its indices for the time being.
class GroupRows {
public:
    explicit GroupRows(const Bitmap& source) : source(source)
    {
        if (source.Indices(0) != nullptr)
            made.resize((kRowsInGroup + std::size(RowsAt {}.edges)) * source.Stride());
    }

    RowsAt Of(const Group& group)
    {
        RowsAt rows { .stride = source.Stride() };
        if (made.empty()) {
            rows.whole = source.Row(0) + static_cast<std::size_t>(group.from) * rows.stride;
            for (std::size_t i = 0; i < std::size(rows.edges); ++i)
                rows.edges[i] = source.Row(group.edges[i].row);
            return rows;
        }
        rows.whole = made.data();
        std::uint8_t* next = made.data();
        for (int y = group.from; y < group.to; ++y)
            Make(y, next);
        for (std::size_t i = 0; i < std::size(rows.edges); ++i) {
            rows.edges[i] = next;
            if (group.edges[i].weight != 0)
                Make(group.edges[i].row, next);
        }
        return rows;
    }

private:
    void Make(int y, std::uint8_t*& next) const
    {
        source.CopyRow(y, next);
        next += source.Stride();
    }

    const Bitmap& source;
    std::vector<std::uint8_t> made;
};

// A scaling under way: the picture, and the columns that each target pixel covers.
struct Job {
    GroupRows source;
    std::span<const Span> across;
    float perPixel; // one over the area that a target pixel covers
    std::vector<std::uint16_t> sums; // of a group's rows, for each column of the source and each channel
    std::vector<Floats4> total; // of the target row
};

VELTRANE_INLINE void Load(Words16& pixels, const std::uint8_t* from, std::size_t bytes) noexcept
{
    pixels = Words16 {};
    std::memcpy(&pixels, from, bytes);
}

// Sums a line of columns, `left` and `right` bytes in two blocks, of the rows that lie `stride` apart.
// `ahead` is how far from the first whole row's line the one lies that is soon summed in its place.
template<class Block>
VELTRANE_INLINE void SumLine(Job& job, const RowsAt& rows, const Group& group, std::size_t offset,
    std::size_t left, std::size_t right, std::size_t ahead) noexcept
{
    const std::size_t stride = rows.stride;
    const std::uint8_t* at = rows.whole + offset;
    Block blocks[2];
    Words16 pixels;
    for (int y = group.from; y < group.to; ++y, at += stride) {
        __builtin_prefetch(at + ahead);
        Load(pixels, at, left);
        blocks[0].Add(pixels);
        Load(pixels, at + left, right);
        blocks[1].Add(pixels);
    }
    __builtin_prefetch(at + ahead);
    const int scaleBits = group.ScaleBits();
    for (std::size_t i = 0; i < std::size(group.edges); ++i) {
        if (group.edges[i].weight == 0)
            continue;
        const Words16 weight = Words16 {} + group.edges[i].weight;
        at = rows.edges[i] + offset;
        Load(pixels, at, left);
        blocks[0].AddShare(pixels, weight, scaleBits);
        Load(pixels, at + left, right);
        blocks[1].AddShare(pixels, weight, scaleBits);
    }
    Sums sums;
    blocks[0].Finish(scaleBits, sums);
    Store(sums, job.sums.data() + offset);
    blocks[1].Finish(scaleBits, sums);
    Store(sums, job.sums.data() + offset + kBlockBytes);
}

// Sums the line of columns that begins with `column`; the last line of a row may begin earlier.
template<class Block>
VELTRANE_INLINE void SumLineAt(Job& job, const RowsAt& rows, const Group& group, int column) noexcept
{
    constexpr std::size_t kAhead = 512; // bytes; measured: a processor alone asks too late for many rows
    const std::size_t bytes = rows.stride;
    if (bytes < 2 * kBlockBytes) {
        const std::size_t left = std::min(bytes, kBlockBytes);
        SumLine<Block>(job, rows, group, 0, left, bytes - left, 0);
        return;
    }
    const std::size_t offset
        = std::min(static_cast<std::size_t>(column) * kChannels, bytes - 2 * kBlockBytes);
    const std::size_t below
        = offset + kAhead < bytes ? 0 : bytes * static_cast<std::size_t>(group.to - group.from + 1) - bytes;
    SumLine<Block>(job, rows, group, offset, kBlockBytes, kBlockBytes, kAhead + below);
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
    if (at < last) {
        Longs2 one;
        LoadColumn(at, one);
        AddColumns(whole, reinterpret_cast<Pairs4>(one));
    }
    ToSum(whole, sum);
    AddShareOf(first, span.firstShare, sum);
    AddShareOf(last, span.lastShare, sum);
}

// Adds a group's rows to the target row. Columns are summed downwards only just before they are summed
// across, so that memory is read all the time.
template<class Block>
VELTRANE_INLINE void AddGroup(Job& job, const Group& group)
{
    const float unit = 1 / (Block::kUnit * static_cast<float>(1 << group.ScaleBits()));
    const RowsAt rows = job.source.Of(group);
    int ready = job.across.front().first;
    for (std::size_t i = 0; i < job.across.size(); ++i) {
        const Span& span = job.across[i];
        for (; ready <= span.last; ready += kLinePixels)
            SumLineAt<Block>(job, rows, group, ready);
        Floats4 sum;
        SumSpan(job.sums.data(), span, sum);
        job.total[i] += sum * unit;
    }
}

// An edge that covers its whole row is none: such rows are counted with the others, exactly.
Edge EdgeAt(int row, float share)
{
    if (share >= 1)
        return {};
    return { row, static_cast<std::uint16_t>(std::min(share * 65536 + 0.5F, 65535.0F)) };
}

template<class Block>
VELTRANE_INLINE void SumTargetRow(Job& job, const Span& down)
{
    std::fill(job.total.begin(), job.total.end(), Floats4 {});
    const int from = down.first + (down.firstShare >= 1 ? 0 : 1);
    const float lastShare = down.first == down.last ? down.firstShare : down.lastShare;
    const int to = down.last + (lastShare >= 1 ? 1 : 0);
    Group group { from, from, { EdgeAt(down.first, down.firstShare), EdgeAt(down.last, down.lastShare) } };
    do {
        group.to = std::clamp(to, group.from, group.from + kRowsInGroup);
        AddGroup<Block>(job, group);
        group = { group.to, group.to, {} };
    } while (group.from < to);
}

// Writes the averages, the four channels in their order.
VELTRANE_INLINE void WriteTargetRow(const Job& job, std::uint8_t* out) noexcept
{
    for (const Floats4& sum : job.total) {
        const Floats4 pixel = __builtin_shufflevector(sum, sum, 0, 2, 1, 3) * job.perPixel;
        const Counts4 rounded = __builtin_convertvector(pixel + 0.5F, Counts4);
        const Bytes4 bytes = __builtin_convertvector(rounded > 255 ? 255 : rounded, Bytes4);
        std::memcpy(out, &bytes, sizeof bytes);
        out += kChannels;
    }
}

template<class Block>
VELTRANE_INLINE void Scale(Job& job, std::span<const Span> down, const ScaledPixels& target)
{
    std::uint8_t* out = target.rows;
    for (const Span& rows : down) {
        SumTargetRow<Block>(job, rows);
        WriteTargetRow(job, out);
        out += target.stride;
    }
}

using Scaling = void (*)(Job&, std::span<const Span>, const ScaledPixels&);

// The same source for the processor that every build runs on, and for a newer one where it is there.
#ifdef __x86_64__
template<class Block>
[[gnu::target("avx2")]] void ScaleAvx2(Job& job, std::span<const Span> down, const ScaledPixels& target)
{
    Scale<Block>(job, down, target);
}
#endif

template<class Block>
void ScaleAnywhere(Job& job, std::span<const Span> down, const ScaledPixels& target)
{
    Scale<Block>(job, down, target);
}

Scaling ScalingFor(bool opaque)
{
#ifdef __x86_64__
    if (HasAvx2())
        return opaque ? ScaleAvx2<OpaqueBlock> : ScaleAvx2<AlphaBlock>;
#endif
    return opaque ? ScaleAnywhere<OpaqueBlock> : ScaleAnywhere<AlphaBlock>;
}

} // namespace

void ScaleByArea(const Bitmap& source, const SourceArea& area, const ScaledPixels& target)
{
    if (IsSmallStep(area, target)) {
        ScaleByTaps(source, area, target);
        return;
    }
    const auto across = SpansOf(area.x, area.width, target.width, source.Width());
    auto down = SpansOf(area.y, area.height, target.height, source.Height());
    const double rows = area.height / target.height;
    // A part of a row counts as a whole one when there is nothing else, for the sake of the sums' precision.
    if (rows < 1) {
        for (Span& span : down) {
            span.firstShare = static_cast<float>(span.firstShare / rows);
            span.lastShare = static_cast<float>(span.lastShare / rows);
        }
    }
    const double covered = area.width / target.width * std::max(rows, 1.0);
    const std::size_t columns = static_cast<std::size_t>(source.Width()) + kLinePixels;
    Job job { GroupRows(source), across, static_cast<float>(1 / covered),
        std::vector<std::uint16_t>(columns * kChannels), std::vector<Floats4>(across.size()) };
    ScalingFor(source.Opaque())(job, down, target);
}

} // namespace veltrane::imaging
