#pragma once

#include <functional>
#include <span>
#include <vector>

#include "imaging/pict/drawing/Geometry.h"
#include "imaging/pict/drawing/Rgba.h"

namespace veltrane::imaging::pict {

enum class Shrinking {
    Nearest, ///< takes one pixel, drops the others
    Average, ///< takes the mean of the area that a pixel covers
};

/// One direction of a source laid over a target of another size.
class Axis {
public:
    /// `size` source pixels from `from` become `targetSize` target pixels from `targetFrom`.
    Axis(int from, int size, int targetFrom, int targetSize, Shrinking shrinking) noexcept;

    struct Reach {
        double from;
        double to;
    };
    /// The stretch of source that makes up the target pixel `at`.
    [[nodiscard]] Reach At(int at) const noexcept;

    [[nodiscard]] bool Averages() const noexcept { return averages; }
    [[nodiscard]] bool SameSize() const noexcept { return scale == 1.0; }

private:
    double first;
    double targetFirst;
    double scale; ///< source pixels for a target pixel
    bool averages;
};

/// Takes a bitmap's rows from the top and gives rows of another size, each with the target place of its
/// first pixel. Growing repeats pixels as QuickDraw
/// does; no more than a row is held.
class Stretch {
public:
    using Emit = std::function<void(int x, int y, std::span<const Rgba> row)>;

    /// Maps `source` to `target`, of which only `wanted` is made. Rows given to Take are those of
    /// `bounds`; where `source` reaches beyond, nothing is made.
    Stretch(const Rect& bounds, const Rect& source, const Rect& target, const Rect& wanted,
        Shrinking shrinking, Emit emit);

    /// Whether the source row `y` has a part in the target; rows that have not need not be given.
    [[nodiscard]] bool Needs(int y) const noexcept;

    /// The row `y`, all of its pixels from `bounds.left` on. Rows come in rising order.
    void Take(int y, std::span<const Rgba> pixels);

private:
    void Copy(std::span<const Rgba> pixels);
    void Average(std::span<const Rgba> pixels);
    void Accumulate(double weight);
    void EmitMean();

    Rect bounds;
    Axis across;
    Axis down;
    Rect made; ///< the part of the target that is made
    int next; ///< the target row that waits for source rows
    bool averages;
    Emit emit;
    std::vector<Rgba> row;
    std::vector<double> means; ///< the current source row squeezed, three components a pixel
    std::vector<double> sums;
    double weights = 0;
};

} // namespace veltrane::imaging::pict
