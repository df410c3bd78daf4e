#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging::jpeg::baseline {

/// The next bits of an entropy-coded segment, the first one in the highest place.
struct BitBuffer {
    std::uint64_t front = 0;
    unsigned count = 0; ///< how many of them are valid, below 64
    const std::uint8_t* next = nullptr; ///< the first byte that is not wholly in `front`

    static constexpr unsigned kFull = 56;

    /// Fills up to at least kFull bits. Eight bytes from `next` on must be readable. The bits after the
    /// valid ones are either 0 or the bits that follow in the segment.
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

/// An entropy-coded segment of a scan without its byte stuffing, the zero after each 0xFF (T.81, B.1.1.5 and
/// F.1.2.3). It buffers some of the bytes, and zeros after the last byte before a marker, so that an MCU is
/// decoded without a check for the end at each bit.
class EntropyCodedSegment {
public:
    /// `scan` must outlive this object. No MCU takes more than `mcuBytes` bytes.
    EntropyCodedSegment(Bytes scan, std::size_t mcuBytes);

    /// The bits at the start of the scan, or after the restart marker that was skipped.
    [[nodiscard]] BitBuffer Start();

    /// Makes sure that a whole MCU can be decoded from `bits`. Returns false when decoding has read past the
    /// marker that ends the segment: the data is damaged.
    [[gnu::always_inline]] [[nodiscard]] bool Ready(BitBuffer& bits)
    {
        if (bits.next < enough) [[likely]]
            return true;
        BitBuffer moved = bits; // so that the caller's may stay in registers
        const bool more = Refill(moved);
        bits = moved;
        return more;
    }

    /// Moves past the restart marker RSTn, `number` 0 to 7. Returns false when anything else comes next.
    [[nodiscard]] bool SkipRestartMarker(const BitBuffer& bits, unsigned number);

    /// Whether all bits that were taken belong to the segment.
    [[nodiscard]] bool Within(const BitBuffer& bits) const noexcept;

private:
    [[nodiscard]] bool Refill(BitBuffer& bits);
    void Unstuff();

    Bytes scan;
    std::size_t at = 0; // in `scan`: the first byte that is not in the buffer yet
    std::size_t margin;
    bool ended = false; // `at` is at a marker or at the end of the file
    std::vector<std::uint8_t> buffer;
    std::uint8_t* end; // after the last byte in the buffer
    const std::uint8_t* enough; // an MCU that starts before this byte is wholly in the buffer
};

} // namespace veltrane::imaging::jpeg::baseline
