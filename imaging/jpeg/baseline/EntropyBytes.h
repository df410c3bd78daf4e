#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging::jpeg::baseline {

/// The front of what is left of the coded bytes, as a number whose highest bit comes first.
struct Bits {
    std::uint64_t front = 0;
    unsigned count = 0; ///< how many of them count, below 64
    const std::uint8_t* next = nullptr; ///< the first byte that is not wholly among them

    static constexpr unsigned kFull = 56;

    /// Makes it kFull bits or more. Eight bytes behind `next` have to be readable. What lies behind the
    /// counted bits is either 0 or what will come there.
    [[gnu::always_inline]] void Fill() noexcept
    {
        std::uint64_t bytes = 0;
        __builtin_memcpy(&bytes, next, sizeof bytes);
        if constexpr (std::endian::native == std::endian::little)
            bytes = __builtin_bswap64(bytes);
        front |= bytes >> count;
        next += (63 - count) >> 3;
        count |= kFull;
    }
    [[gnu::always_inline]] void Drop(unsigned bits) noexcept
    {
        front <<= bits;
        count -= bits;
    }
};

/// The coded bytes of a scan, without the zeros that are stuffed behind each 0xFF: T.81, F.1.2.3. Holds a
/// few of them at a time, and zeros behind the last before a marker, so that a unit can be decoded without
/// looking for the end at each bit.
class EntropyBytes {
public:
    /// `scan` must outlive this object. The picture's units are of at most `unitBytes` coded bytes.
    EntropyBytes(Bytes scan, std::size_t unitBytes);

    /// The bits at the start of the scan, or behind the restart marker that was passed.
    [[nodiscard]] Bits Start();

    /// Makes sure that a whole unit can be decoded from `bits`. False when they went on behind the marker
    /// that ends these bytes: the data is damaged.
    [[gnu::always_inline]] [[nodiscard]] bool Ready(Bits& bits)
    {
        if (bits.next < enough) [[likely]]
            return true;
        Bits moved = bits; // so that the caller's may stay in registers
        const bool more = More(moved);
        bits = moved;
        return more;
    }

    /// Goes to what stands behind restart marker `number` (0 to 7). False when something else comes next.
    [[nodiscard]] bool PassRestart(const Bits& bits, unsigned number);

    /// Whether all bits that were taken were there.
    [[nodiscard]] bool Had(const Bits& bits) const noexcept;

private:
    [[nodiscard]] bool More(Bits& bits);
    void TakeIn();

    Bytes scan;
    std::size_t at = 0; // in `scan`, of what was not taken in yet
    std::size_t margin;
    bool ended = false; // a marker stands there, or the file's end
    std::vector<std::uint8_t> held;
    std::uint8_t* end; // behind the last byte held
    const std::uint8_t* enough; // up to here a unit's bytes lie behind
};

} // namespace veltrane::imaging::jpeg::baseline
