#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "imaging/deflate/Block.h"
#include "imaging/deflate/Grain.h"
#include "imaging/deflate/Matches.h"

namespace veltrane::imaging {

/// What bytes are like, and so how to look for repetitions in them.
enum class Likeness {
    Residues, ///< what prediction left of a photograph: runs of zeros at most
    Grain, ///< the same, where pixels come again now and then
    Repeats, ///< drawings, text, palettes: anything may come again
};

/// Looks for repetitions in a stream, each part of it in the way that suits it.
class Search {
public:
    /// `depth`: of the search for repeats, as MatchFinder counts it.
    explicit Search(int depth) : depth(depth) { }

    /// Cuts bytes from `from` on, at most up to `to`, into literals and matches, and counts them in `block`,
    /// which is cleared first; the position reached. The arguments are MatchFinder's.
    [[nodiscard]] std::size_t Cut(const std::uint8_t* data, std::uint32_t origin, std::size_t from,
        std::size_t to, Likeness likeness, const Layout& layout, Block& block);

private:
    int depth;
    GrainFinder grain;
    std::optional<MatchFinder>
        finder; ///< made when it is asked: its tables cost what a small photograph does
};

} // namespace veltrane::imaging
