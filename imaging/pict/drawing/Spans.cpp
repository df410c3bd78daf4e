#include "imaging/pict/drawing/Spans.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace veltrane::imaging::pict {

void Intersect(const Spans& a, const Spans& b, Spans& out)
{
    out.clear();
    std::size_t i = 0;
    std::size_t j = 0;
    while (i + 1 < a.size() && j + 1 < b.size()) {
        const int left = std::max(a[i], b[j]);
        const int right = std::min(a[i + 1], b[j + 1]);
        if (left < right)
            out.insert(out.end(), { left, right });
        if (a[i + 1] < b[j + 1])
            i += 2;
        else
            j += 2;
    }
}

void Exclusive(const Spans& a, const Spans& b, Spans& out)
{
    out.clear();
    std::set_symmetric_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(out));
}

void Clamp(Spans& spans, int left, int right)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i + 1 < spans.size(); i += 2) {
        const int from = std::max(spans[i], left);
        const int to = std::min(spans[i + 1], right);
        if (from >= to)
            continue;
        spans[kept++] = from;
        spans[kept++] = to;
    }
    spans.resize(kept);
}

} // namespace veltrane::imaging::pict
