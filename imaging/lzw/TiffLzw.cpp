#include "imaging/lzw/TiffLzw.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace veltrane::imaging {

namespace {

constexpr unsigned kClear = 256, kEnd = 257, kFirstBits = 9;

// Every byte, and room to read a whole piece from the last.
constexpr auto kBytes = [] {
    std::array<std::uint8_t, kClear + TiffLzw::kSlack> bytes {};
    for (unsigned i = 0; i < kClear; ++i)
        bytes[i] = static_cast<std::uint8_t>(i);
    return bytes;
}();

// Writes whole pieces. Where the string reaches into what is being written, its last byte comes out wrong.
void CopyPieces(const std::uint8_t* from, std::uint8_t* to, std::size_t length) noexcept
{
    for (std::size_t i = 0; i < length; i += TiffLzw::kSlack) {
        std::array<std::uint8_t, TiffLzw::kSlack> piece;
        std::memcpy(piece.data(), from + i, piece.size());
        std::memcpy(to + i, piece.data(), piece.size());
    }
}

template<std::size_t step>
void AddSteps(std::uint8_t* row, std::size_t bytes) noexcept
{
    std::array<std::uint8_t, step> sums {};
    for (std::size_t i = 0; i + step <= bytes; i += step)
        for (std::size_t k = 0; k < step; ++k)
            row[i + k] = sums[k] = static_cast<std::uint8_t>(sums[k] + row[i + k]);
}

} // namespace

// Codes, the first bit highest.
class TiffLzw::Reader {
public:
    explicit Reader(Bytes packed) : next(packed.data()), end(packed.data() + packed.size()) { }

    // The code of so many bits; kEnd when there are none any more.
    [[nodiscard]] unsigned Take(unsigned width) noexcept
    {
        if (count < width)
            Fill();
        if (count < width)
            return kEnd;
        const auto code = static_cast<unsigned>(front >> (64 - width));
        front <<= width;
        count -= width;
        return code;
    }

private:
    // Bits behind the counted ones are those that will come there.
    void Fill() noexcept
    {
        if (end - next >= 8) {
            std::uint64_t bytes = 0;
            std::memcpy(&bytes, next, sizeof bytes);
            if constexpr (std::endian::native == std::endian::little)
                bytes = __builtin_bswap64(bytes);
            front |= bytes >> count;
            next += (63 - count) >> 3;
            count |= 56;
            return;
        }
        for (; next < end && count <= 56; count += 8)
            front |= std::uint64_t { *next++ } << (56 - count);
    }

    const std::uint8_t *next, *end;
    std::uint64_t front = 0;
    unsigned count = 0;
};

bool TiffLzw::Unpack(Bytes packed, std::span<std::uint8_t> to)
{
    for (unsigned code = 0; code < kClear; ++code) {
        starts[code] = kBytes.data() + code;
        lengths[code] = 1;
    }
    Reader reader(packed);
    std::uint8_t* at = to.data();
    std::uint8_t* const end = at + to.size();
    // Full, so that nothing can come before the first clear code. Data of the old kind never begins with one.
    unsigned width = kFirstBits, next = kCodes;
    std::size_t last = 0; // length of the string before
    while (at < end) {
        unsigned code = reader.Take(width);
        if (code == kClear) {
            width = kFirstBits;
            next = kEnd + 1;
            do
                code = reader.Take(width);
            while (code == kClear);
            if (code > kClear)
                return false;
            *at++ = static_cast<std::uint8_t>(code);
            last = 1;
            continue;
        }
        if (next == kCodes || code > next || code == kEnd)
            return false;
        starts[next] = at - last;
        lengths[next] = static_cast<std::uint16_t>(last + 1);
        const std::uint8_t* const from = starts[code];
        last = std::min<std::size_t>(lengths[code], static_cast<std::size_t>(end - at));
        CopyPieces(from, at, last);
        if (code == next && last == lengths[code])
            at[last - 1] = *from;
        at += last;
        if (++next == (1U << width) - 1 && width < kMostBits)
            ++width;
    }
    return true;
}

void AddDifferences(std::uint8_t* row, std::size_t bytes, std::size_t step) noexcept
{
    switch (step) {
    case 1: return AddSteps<1>(row, bytes);
    case 3: return AddSteps<3>(row, bytes);
    case 4: return AddSteps<4>(row, bytes);
    default:
        for (std::size_t i = step; i < bytes; ++i)
            row[i] = static_cast<std::uint8_t>(row[i] + row[i - step]);
    }
}

} // namespace veltrane::imaging
