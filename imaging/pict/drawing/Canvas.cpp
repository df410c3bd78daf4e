#include "imaging/pict/drawing/Canvas.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace veltrane::imaging::pict {

namespace {

constexpr int kSpanCost = 32; ///< what a span costs beside its pixels: mostly, to reach its row in memory

Rgba Mixed(Rgba before, Rgba after, int coverage) noexcept
{
    const auto old = Components(before);
    const auto fresh = Components(after);
    const auto mix = [&](std::size_t i) {
        return static_cast<std::uint8_t>((fresh[i] * coverage + old[i] * (255 - coverage) + 127) / 255);
    };
    return MakeRgba(mix(0), mix(1), mix(2));
}

} // namespace

// White and opaque where nothing is drawn: a picture is recorded for paper or a white window, drawings use
// "or" modes that need something to fall on, and QuickDraw has no notion of a transparent target. A row gets
// its white when it is first drawn on: a damaged file of a few bytes shall not touch gigabytes before it is
// found out.
Canvas::Canvas(int width, int height, Budget& budget)
    : bitmap(Bitmap::Uninitialised(width, height))
    , rows(bitmap.Writable())
    , paper(static_cast<std::size_t>(height))
    , budget(budget)
    , clip(Rect { 0, 0, width, height })
    , visible { 0, 0, width, height }
    , scratch(static_cast<std::size_t>(width))
{
    bitmap.Opaque(true);
}

void Canvas::Whiten(int y) noexcept
{
    if (!std::exchange(paper[static_cast<std::size_t>(y)], std::uint8_t { 1 }))
        std::memset(rows + static_cast<std::size_t>(y) * bitmap.Stride(), 255, bitmap.Stride());
}

Bitmap Canvas::Finish()
{
    for (int y = 0; y < bitmap.Height(); ++y)
        Whiten(y);
    return std::move(bitmap);
}

Rgba* Canvas::At(int x, int y) noexcept
{
    Whiten(y);
    return reinterpret_cast<Rgba*>(rows + static_cast<std::size_t>(y) * bitmap.Stride()) + x;
}

void Canvas::Clip(Region region)
{
    clip = std::move(region);
    visible = Intersect(clip.Bounds(), { 0, 0, bitmap.Width(), bitmap.Height() });
}

// What is left of a row once clipped. The result is valid until the next call.
const Spans& Canvas::Clipped(int y, const Spans& wanted)
{
    if (clip.Rectangular()) {
        shown = wanted;
    } else {
        clip.Row(y, clipRow);
        budget.Charge(static_cast<std::int64_t>(clipRow.size()));
        Intersect(wanted, clipRow, shown);
    }
    Clamp(shown, visible.left, visible.right);
    return shown;
}

void Canvas::Fill(const Shape& shape, const Pattern& pattern, const Transfer& transfer)
{
    const Rect area = Intersect(shape.Bounds(), visible);
    if (area.Empty())
        return;
    budget.Charge(shape.RowCost() * area.Height());
    Spans row;
    for (int y = area.top; y < area.bottom; ++y) {
        shape.Row(y, row);
        const Spans& spans = Clipped(y, row);
        for (std::size_t i = 0; i + 1 < spans.size(); i += 2)
            FillSpan(y, spans[i], spans[i + 1], pattern, transfer);
    }
}

void Canvas::FillSpan(int y, int left, int right, const Pattern& pattern, const Transfer& transfer)
{
    budget.Charge(right - left + kSpanCost);
    const auto count = static_cast<std::size_t>(right - left);
    Rgba colour = kBlack;
    if (pattern.Uniform(colour) && Replaces(transfer, colour, colour)) {
        std::fill_n(At(left, y), count, colour);
        return;
    }
    pattern.Row(left, y, std::span(scratch).first(count));
    Apply(transfer, At(left, y), scratch.data(), count);
}

void Canvas::Put(int x, int y, std::span<const Rgba> pixels, const Shape* mask, const Transfer& transfer)
{
    if (y < visible.top || y >= visible.bottom || pixels.empty())
        return;
    Spans row { x, x + static_cast<int>(pixels.size()) };
    if (mask != nullptr) {
        Spans holes;
        mask->Row(y, holes);
        const Spans whole = std::exchange(row, {});
        Intersect(whole, holes, row);
    }
    const Spans& spans = Clipped(y, row);
    for (std::size_t i = 0; i + 1 < spans.size(); i += 2) {
        const int left = spans[i];
        budget.Charge(spans[i + 1] - left + kSpanCost);
        Apply(
            transfer, At(left, y), pixels.data() + (left - x), static_cast<std::size_t>(spans[i + 1] - left));
    }
}

void Canvas::Tint(int y, int left, int right, int coverage, const Transfer& transfer)
{
    if (y < visible.top || y >= visible.bottom || left >= right)
        return;
    const Spans& spans = Clipped(y, { left, right });
    for (std::size_t i = 0; i + 1 < spans.size(); i += 2) {
        budget.Charge(spans[i + 1] - spans[i] + kSpanCost);
        for (Rgba& pixel : std::span(At(spans[i], y), static_cast<std::size_t>(spans[i + 1] - spans[i]))) {
            Rgba fresh = pixel;
            Apply(transfer, &fresh, &kBlack, 1);
            pixel = Mixed(pixel, fresh, coverage);
        }
    }
}

} // namespace veltrane::imaging::pict
