#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace veltrane::imaging {

/// Packs codes into memory, the first bit lowest, as deflate wants them (RFC 1951, 3.1.1). The owner of the
/// memory sees to it that there is room: 8 bytes more than what is put.
class BitWriter {
public:
    explicit BitWriter(std::uint8_t* at) noexcept : at(at) { }

    /// How many bits may be put between two flushes.
    static constexpr unsigned kBetweenFlushes = 56;

    /// The low `count` bits; those above them are 0.
    [[gnu::always_inline]] void Put(std::uint64_t bits, unsigned count) noexcept
    {
        pending |= bits << pendingBits;
        pendingBits += count;
    }

    /// Moves the whole bytes of what was put to memory.
    [[gnu::always_inline]] void Flush() noexcept
    {
        std::uint64_t little = pending;
        if constexpr (std::endian::native == std::endian::big)
            little = __builtin_bswap64(little);
        std::memcpy(at, &little, sizeof little);
        at += pendingBits >> 3;
        pending >>= pendingBits & ~7U;
        pendingBits &= 7;
    }

    /// Fills the last byte with zeros and moves it to memory.
    void Align() noexcept
    {
        pendingBits = (pendingBits + 7) & ~7U;
        Flush();
    }

    /// Whole bytes; only after Align.
    void Copy(const std::uint8_t* bytes, std::size_t count) noexcept
    {
        std::memcpy(at, bytes, count);
        at += count;
    }

    /// The end of the whole bytes, once flushed.
    [[nodiscard]] std::uint8_t* End() const noexcept { return at; }

    /// Goes on at another place: for what is left of the last byte.
    void MoveTo(std::uint8_t* place) noexcept { at = place; }

private:
    std::uint64_t pending = 0;
    unsigned pendingBits = 0;
    std::uint8_t* at;
};

} // namespace veltrane::imaging
