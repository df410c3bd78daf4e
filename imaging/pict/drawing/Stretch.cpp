#include "imaging/pict/drawing/Stretch.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace veltrane::imaging::pict {

namespace {

// The target pixels from `from` up to `to` whose source lies within `low` up to `high`.
std::pair<int, int> Covered(const Axis& axis, int from, int to, int low, int high)
{
    while (from < to && axis.At(from).to <= low)
        ++from;
    while (from < to && axis.At(to - 1).from >= high)
        --to;
    return { from, to };
}

Rect Makeable(const Axis& across, const Axis& down, const Rect& bounds, const Rect& wanted)
{
    const auto [left, right] = Covered(across, wanted.left, wanted.right, bounds.left, bounds.right);
    const auto [top, bottom] = Covered(down, wanted.top, wanted.bottom, bounds.top, bounds.bottom);
    return { left, top, right, bottom };
}

} // namespace

Axis::Axis(int from, int size, int targetFrom, int targetSize, Shrinking shrinking) noexcept
    : first(from)
    , targetFirst(targetFrom)
    , scale(static_cast<double>(size) / targetSize)
    , averages(shrinking == Shrinking::Average && size > targetSize)
{
}

Axis::Reach Axis::At(int at) const noexcept
{
    const double offset = at - targetFirst;
    if (averages)
        return { first + offset * scale, first + (offset + 1) * scale };
    const double pixel = first + std::floor((offset + 0.5) * scale);
    return { pixel, pixel + 1 };
}

Stretch::Stretch(const Rect& bounds, const Rect& source, const Rect& target, const Rect& wanted,
    Shrinking shrinking, Emit emit)
    : bounds(bounds)
    , across(source.left, source.Width(), target.left, target.Width(), shrinking)
    , down(source.top, source.Height(), target.top, target.Height(), shrinking)
    , made(Makeable(across, down, bounds, Intersect(wanted, target)))
    , next(made.top)
    , averages(across.Averages() || down.Averages())
    , emit(std::move(emit))
{
    if (made.Empty())
        return;
    const auto width = static_cast<std::size_t>(made.Width());
    row.resize(width);
    if (averages) {
        means.resize(width * 3);
        sums.resize(width * 3);
    }
}

bool Stretch::Needs(int y) const noexcept
{
    if (made.Empty() || next >= made.bottom)
        return false;
    const Axis::Reach reach = down.At(next);
    return y < reach.to && y + 1 > reach.from;
}

void Stretch::Copy(std::span<const Rgba> pixels)
{
    const auto index = [this](int x) { return static_cast<std::size_t>(across.At(x).from - bounds.left); };
    if (across.SameSize()) {
        std::copy_n(pixels.begin() + static_cast<std::ptrdiff_t>(index(made.left)), row.size(), row.begin());
        return;
    }
    for (int x = made.left; x < made.right; ++x)
        row[static_cast<std::size_t>(x - made.left)] = pixels[index(x)];
}

// Squeezes one source row: each target pixel becomes the mean of the pixels that it covers.
void Stretch::Average(std::span<const Rgba> pixels)
{
    double* mean = means.data();
    for (int x = made.left; x < made.right; ++x, mean += 3) {
        const Axis::Reach reach = across.At(x);
        const double from = std::max(reach.from - bounds.left, 0.0);
        const double to = std::min(reach.to - bounds.left, static_cast<double>(pixels.size()));
        std::fill_n(mean, 3, 0.0);
        for (auto i = static_cast<std::size_t>(from); static_cast<double>(i) < to; ++i) {
            const auto at = static_cast<double>(i);
            const double part = (std::min(to, at + 1) - std::max(from, at)) / (to - from);
            const auto components = Components(pixels[i]);
            for (std::size_t c = 0; c < 3; ++c)
                mean[c] += components[c] * part;
        }
    }
}

void Stretch::Accumulate(double weight)
{
    for (std::size_t i = 0; i < sums.size(); ++i)
        sums[i] += means[i] * weight;
    weights += weight;
}

void Stretch::EmitMean()
{
    const auto rounded = [this](std::size_t i) { return static_cast<std::uint8_t>(sums[i] / weights + 0.5); };
    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = MakeRgba(rounded(3 * i), rounded(3 * i + 1), rounded(3 * i + 2));
    std::ranges::fill(sums, 0.0);
    weights = 0;
    emit(made.left, next, row);
}

void Stretch::Take(int y, std::span<const Rgba> pixels)
{
    if (!Needs(y))
        return;
    if (averages)
        Average(pixels);
    else
        Copy(pixels);
    for (; Needs(y); ++next) {
        const Axis::Reach reach = down.At(next);
        if (averages)
            Accumulate(std::min<double>(reach.to, y + 1) - std::max<double>(reach.from, y));
        const bool last = y + 1 == bounds.bottom; // nothing more will come for this row
        if (reach.to > y + 1 && !last)
            return;
        if (averages)
            EmitMean();
        else
            emit(made.left, next, row);
    }
}

} // namespace veltrane::imaging::pict
