#pragma once

#include <vector>

namespace veltrane::imaging::pict {

/// One row of a shape: rising x positions at which "outside" and "inside" take turns. An even number of
/// them; pixels from the first up to the second are inside, and so on.
using Spans = std::vector<int>;

/// out = what both hold. `out` must be neither of them.
void Intersect(const Spans& a, const Spans& b, Spans& out);

/// out = what exactly one of them holds. `out` must be neither of them.
void Exclusive(const Spans& a, const Spans& b, Spans& out);

/// Keeps what lies from `left` up to `right`.
void Clamp(Spans& spans, int left, int right);

} // namespace veltrane::imaging::pict
