#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/bits/BitWriter.h"
#include "imaging/bits/Bytes.h"

namespace veltrane::imaging {

constexpr std::size_t kLiteralSymbols = 286; ///< bytes, end of block, lengths; RFC 1951, 3.2.5
constexpr std::size_t kDistanceSymbols = 30;
constexpr std::size_t kLongestMatch = 258;
constexpr std::size_t kWindow = 32 * 1024; ///< how far back a match may lie

/// Some literals, then a match.
struct Sequence {
    std::uint32_t literals; ///< bytes to take as they are
    std::uint16_t length; ///< of the match behind them; 0: none, the block ends
    std::uint16_t distance; ///< less 1
};

/// A stretch of bytes cut into literals and matches, with the counts its code is made from.
struct Block {
    std::vector<Sequence> sequences; ///< the last one has no match
    std::array<std::uint32_t, kLiteralSymbols> literals {};
    std::array<std::uint32_t, kDistanceSymbols> distances {};

    void Clear() noexcept;

    /// Adds `count` literals, whose bytes are counted elsewhere, and a match.
    void AddMatch(std::uint32_t count, unsigned length, unsigned distance);

    /// Adds many of those.
    void AddMatches(std::span<const Sequence> matches);

    /// Adds the literals at the end.
    void AddEnd(std::uint32_t count);
};

/// The most that a block of `bytes` bytes can take in deflate's form, with room for what BitWriter asks.
[[nodiscard]] constexpr std::size_t BlockBound(std::size_t bytes) noexcept
{
    return bytes * 2 + 1024;
}

/// How many bits the block takes with a code of its own.
[[nodiscard]] std::uint64_t BlockBits(const Block& block);

/// Writes the block in the form that is shortest. `bytes`: what the sequences cover.
void WriteBlock(BitWriter& to, const Block& block, Bytes bytes, bool last);

} // namespace veltrane::imaging
