#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging {

/// Unpacks the indices of a frame whose data is in order. Source: GIF 89a, appendix F.
class GifLzw {
public:
    /// `blocks`: the data blocks behind the frame's head, each with its length in front; the last one may be
    /// cut short, and what lies behind the empty one is not looked at. `codeSize`: 1 to 8, as the file tells
    /// it. `most`: indices asked for at a time.
    GifLzw(Bytes blocks, int codeSize, std::size_t most);

    /// The next `count` indices, or null when the data ends before them or holds a code that it must not:
    /// then nothing more can be had. Valid until the next call.
    [[nodiscard]] const std::uint8_t* Next(std::size_t count);

private:
    static constexpr unsigned kMostBits = 12;
    static constexpr std::size_t kCodes = std::size_t { 1 } << kMostBits;
    static constexpr std::uint16_t kNone = 0xFFFF;

    // A string in pieces of 8 indices: the last one, which may be shorter, and the code of what precedes it.
    struct String {
        std::uint64_t tail = 0; ///< as it lies in memory
        std::uint16_t before = kNone;
        std::uint16_t length = 0;
        std::uint8_t first = 0;
    };

    struct Bits {
        std::uint64_t held = 0;
        unsigned count = 0;
    };

    [[nodiscard]] static String Longer(const String& string, std::uint16_t code, std::uint8_t index) noexcept;
    [[nodiscard]] Bits Refill(Bits bits) noexcept;
    [[nodiscard]] bool Decode(std::size_t goal);
    void Clear() noexcept;
    std::uint8_t* Put(std::uint8_t* to, const String& string) const noexcept;

    Bytes rest; ///< blocks not begun
    Bytes block; ///< what is left of the one begun
    Bits bits;
    unsigned clear, width = 0;
    std::uint16_t next = 0, last = kNone; ///< the code to be given, and the one before
    std::array<String, kCodes> strings;
    std::vector<std::uint8_t> room;
    std::size_t taken = 0, filled = 0; ///< of `room`
};

} // namespace veltrane::imaging
