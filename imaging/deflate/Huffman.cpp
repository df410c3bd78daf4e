#include "imaging/deflate/Huffman.h"

#include <array>

namespace veltrane::imaging {

namespace {

constexpr unsigned kMostBits = 15;

} // namespace

void AssignCodes(std::span<const std::uint8_t> lengths, std::span<std::uint16_t> codes)
{
    std::array<unsigned, kMostBits + 2> next {};
    for (const std::uint8_t length : lengths) {
        if (length != 0)
            ++next[length + 1U];
    }
    for (std::size_t bits = 2; bits < next.size(); ++bits)
        next[bits] = (next[bits] + next[bits - 1]) << 1;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        unsigned code = lengths[i] != 0 ? next[lengths[i]]++ : 0, reversed = 0;
        for (unsigned bit = 0; bit < lengths[i]; ++bit, code >>= 1)
            reversed = reversed << 1 | (code & 1);
        codes[i] = static_cast<std::uint16_t>(reversed);
    }
}

} // namespace veltrane::imaging
