#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "imaging/bits/Bytes.h"
#include "imaging/deflate/Block.h"
#include "imaging/deflate/Search.h"

namespace veltrane::imaging::png {

/// Tells what bytes would come to if they were written, without writing them.
class Trial {
public:
    /// Bits that `bytes` take from `known` on, looked at as `likeness` says: whole rows both. Repeats are
    /// looked for at a glance.
    [[nodiscard]] std::uint64_t BitsOf(
        Bytes bytes, std::size_t known, Likeness likeness, const Layout& layout);

private:
    [[nodiscard]] std::uint64_t Cut(Bytes bytes, std::size_t from, Likeness likeness, const Layout& layout);

    Search search { kGlance };
    std::uint32_t origin = kWindow + 1; ///< behind whatever the finder remembers of other bytes
    Block block;
};

} // namespace veltrane::imaging::png
