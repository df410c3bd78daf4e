#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging {

/// Walks a block of bytes and never past it: a read or move beyond the end raises
/// Fault::Incomplete. Decoders test no length by hand.
class ByteReader {
public:
    ByteReader(Bytes block, std::endian byteOrder) noexcept : bytes(block), order(byteOrder) { }

    [[nodiscard]] std::uint8_t U8() { return Take(1)[0]; }
    [[nodiscard]] std::int8_t I8() { return static_cast<std::int8_t>(U8()); }
    [[nodiscard]] std::uint16_t U16() { return static_cast<std::uint16_t>(Number(2)); }
    [[nodiscard]] std::int16_t I16() { return static_cast<std::int16_t>(U16()); }
    [[nodiscard]] std::uint32_t U32() { return Number(4); }
    [[nodiscard]] std::int32_t I32() { return static_cast<std::int32_t>(U32()); }

    /// The next `count` bytes, as a view into the block.
    [[nodiscard]] Bytes Take(std::size_t count);
    void Skip(std::size_t count) { (void)Take(count); }

    /// Moves to an offset from the block's start; its end is allowed.
    void Seek(std::size_t offset);

    /// A reader confined to the next `count` bytes: nested records cannot escape their parent.
    [[nodiscard]] ByteReader Nested(std::size_t count) { return { Take(count), order }; }

    [[nodiscard]] std::size_t Position() const noexcept { return position; }
    [[nodiscard]] std::size_t Remaining() const noexcept { return bytes.size() - position; }

private:
    [[nodiscard]] std::uint32_t Number(std::size_t width);

    Bytes bytes;
    std::size_t position = 0;
    std::endian order;
};

} // namespace veltrane::imaging
