#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/bits/Bytes.h"
#include "imaging/bits/Sink.h"
#include "imaging/deflate/Block.h"
#include "imaging/deflate/Search.h"

namespace veltrane::imaging::png {

/// Writes one zlib stream as IDAT chunks. Memory: the window, a band and its compressed form.
class IdatStream {
public:
    /// `most`: bytes in the largest band. `step`: bytes of a pixel, 1 where it takes less. `to` must outlive
    /// this.
    IdatStream(Sink& to, std::size_t most, const Layout& layout);

    /// The room for the next band: `most` bytes, good until Write.
    [[nodiscard]] std::uint8_t* Room() noexcept { return window.data() + kept; }

    /// Compresses the first `bytes` bytes of the room. `last` ends the stream and writes what is left.
    void Write(std::size_t bytes, Likeness likeness, bool last);

private:
    void WriteBlocks(std::size_t end, Likeness likeness, bool last);
    void Keep(std::size_t end);
    void WriteChunk(bool last);

    Sink& sink;
    Layout layout;
    std::vector<std::uint8_t> window; ///< what came before, as far as matches reach, then the band
    std::size_t kept = 0;
    std::uint32_t origin = kWindow + 1; ///< position in the stream of the window's first byte; not 0, which
                                        ///< is what the tables of the finders hold at first
    Search search { kThorough };
    Block block;
    std::vector<std::uint8_t> out; ///< a chunk in the making
    BitWriter writer;
    std::uint32_t adler = 1;
};

/// Writes a chunk. `type`: its four letters as a number.
void WriteChunk(Sink& to, std::uint32_t type, Bytes data);

} // namespace veltrane::imaging::png
