#include "imaging/deflate/Search.h"

#include "imaging/deflate/Runs.h"

namespace veltrane::imaging {

std::size_t Search::Cut(const std::uint8_t* data, std::uint32_t origin, std::size_t from, std::size_t to,
    Likeness likeness, const Layout& layout, Block& block)
{
    switch (likeness) {
    case Likeness::Residues: FindRuns({ data + from, to - from }, block); return to;
    case Likeness::Grain: grain.Cut(data, origin, from, to, layout, block); return to;
    case Likeness::Repeats: break;
    }
    if (!finder)
        finder.emplace(depth);
    return finder->Cut(data, origin, from, to, layout.step, block);
}

} // namespace veltrane::imaging
