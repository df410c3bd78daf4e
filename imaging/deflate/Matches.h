#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/deflate/Block.h"

namespace veltrane::imaging {

/// How many earlier places are looked at for each position.
constexpr int kThorough = 60;
constexpr int kGlance = 8; ///< enough to tell whether anything repeats

/// Finds what a stream has shown before, within deflate's window: chains of positions with the same four
/// bytes, searched to a bounded depth, and the last position with the same three.
class MatchFinder {
public:
    explicit MatchFinder(int depth);

    /// Cuts bytes [from, to) of `data` into literals and matches and counts them in `block`, which is
    /// cleared first. Stops early, behind a whole sequence, when the block is long enough; the position
    /// reached. `data` holds the stream from `origin` on (a position in the stream), and whatever of the
    /// window before `from` is still known. 8 bytes behind `to` can be read. A pixel takes `step` bytes.
    [[nodiscard]] std::size_t Cut(const std::uint8_t* data, std::uint32_t origin, std::size_t from,
        std::size_t to, std::size_t step, Block& block);

private:
    struct Match {
        unsigned length = 0;
        unsigned distance = 0;
    };
    struct Stretch { // what Cut works on
        const std::uint8_t* data;
        std::uint32_t origin;
        std::size_t end;
    };

    [[nodiscard]] Match Find(const Stretch& in, std::size_t at, unsigned longerThan, int looks);
    [[nodiscard]] static int Worth(const Match& match) noexcept;
    void Note(const Stretch& in, std::size_t at);
    void Skip(const Stretch& in, std::size_t from, std::size_t to);

    int depth;
    std::vector<std::uint32_t> heads, threes, previous;
};

} // namespace veltrane::imaging
