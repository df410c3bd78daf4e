#include "imaging/jpeg/baseline/EntropyCodedSegment.h"

#include <algorithm>
#include <cstring>

namespace veltrane::imaging::jpeg::baseline {

namespace {

constexpr std::size_t kBuffered = 16 * 1024; // bytes; they stay in the cache
constexpr std::uint8_t kMarkerPrefix = 0xFF;

} // namespace

EntropyCodedSegment::EntropyCodedSegment(Bytes scan, std::size_t mcuBytes)
    : scan(scan)
    , margin(mcuBytes + 2 * sizeof(std::uint64_t))
    , buffer(kBuffered + 2 * margin)
    , end(buffer.data())
    , enough(end)
{
}

BitBuffer EntropyCodedSegment::Start()
{
    end = buffer.data();
    ended = false;
    Unstuff();
    return { 0, 0, buffer.data() };
}

bool EntropyCodedSegment::Refill(BitBuffer& bits)
{
    if (ended)
        return Within(bits);
    const auto left = static_cast<std::size_t>(end - bits.next);
    std::memmove(buffer.data(), bits.next, left);
    bits.next = buffer.data();
    end = buffer.data() + left;
    Unstuff();
    return true;
}

// Fills the buffer. The bytes between two 0xFF are copied in one go.
void EntropyCodedSegment::Unstuff()
{
    const std::uint8_t* const full = buffer.data() + kBuffered + margin;
    while (end < full && !ended) {
        const std::uint8_t* const from = scan.data() + at;
        const std::size_t most = std::min(static_cast<std::size_t>(full - end), scan.size() - at);
        const void* const mark = most == 0 ? nullptr : std::memchr(from, kMarkerPrefix, most);
        const std::size_t plain = mark == nullptr
            ? most
            : static_cast<std::size_t>(static_cast<const std::uint8_t*>(mark) - from);
        std::memcpy(end, from, plain);
        end += plain;
        at += plain;
        if (mark == nullptr) {
            ended = at == scan.size();
            continue;
        }
        ended = at + 1 == scan.size() || scan[at + 1] != 0;
        if (!ended) {
            *end++ = kMarkerPrefix;
            at += 2;
        }
    }
    if (ended)
        std::memset(end, 0, margin);
    enough = ended ? end : end - margin;
}

bool EntropyCodedSegment::Within(const BitBuffer& bits) const noexcept
{
    return 8 * (bits.next - end) <= static_cast<std::ptrdiff_t>(bits.count);
}

bool EntropyCodedSegment::SkipRestartMarker(const BitBuffer& bits, unsigned number)
{
    constexpr unsigned kRestart0 = 0xD0;
    const auto whole = static_cast<std::ptrdiff_t>(bits.count / 8); // whole bytes that have not been consumed
    if (!ended || bits.next - whole != end)
        return false;
    while (at < scan.size() && scan[at] == kMarkerPrefix) // fill bytes before a marker: T.81, B.1.1.2
        ++at;
    return at < scan.size() && scan[at++] == kRestart0 + number;
}

} // namespace veltrane::imaging::jpeg::baseline
