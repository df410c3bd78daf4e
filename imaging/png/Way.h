#pragma once

#include <algorithm>
#include <utility>

#include "imaging/deflate/Search.h"

namespace veltrane::imaging::png {

/// How a band's rows are stored: filtered or as they are, with runs alone, pixels that come again, or all
/// that repeats.
enum class Way { Photo, Grain, Shades, Drawing };

[[nodiscard]] constexpr bool IsFiltered(Way way) noexcept
{
    return way != Way::Drawing;
}

/// Whether it takes several times as long as the others.
[[nodiscard]] constexpr bool IsSlow(Way way) noexcept
{
    return way == Way::Shades || way == Way::Drawing;
}

[[nodiscard]] constexpr Likeness LikenessOf(Way way) noexcept
{
    if (way == Way::Photo)
        return Likeness::Residues;
    return way == Way::Grain ? Likeness::Grain : Likeness::Repeats;
}

/// What the last trial found, and for how long that is believed. A trial takes as long as writing, or longer:
/// so it is made the more seldom the longer the same way wins.
class Verdict {
public:
    static constexpr int kFirstTrust = 8; ///< bands

    /// The way for the next band; `tryAll` finds it where none is believed any more.
    template<class Try>
    [[nodiscard]] Way Ask(Try tryAll)
    {
        constexpr int kFirstTrustInSlow = 2, kMostTrust = 256, kGrowth = 4;
        if (left == 0) {
            const Way before = std::exchange(found, tryAll());
            const int first = IsSlow(found) ? kFirstTrustInSlow : kFirstTrust;
            trust = found == before ? std::clamp(kGrowth * trust, first, kMostTrust) : first;
            left = trust;
        }
        --left;
        return found;
    }

private:
    Way found = Way::Photo;
    int trust = 0, left = 0; // bands
};

} // namespace veltrane::imaging::png
