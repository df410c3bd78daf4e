#include "imaging/jpeg/baseline/EntropyBytes.h"

#include <algorithm>
#include <cstring>

namespace veltrane::imaging::jpeg::baseline {

namespace {

constexpr std::size_t kHeld = 16 * 1024; // stays in the cache
constexpr std::uint8_t kMark = 0xFF;

} // namespace

EntropyBytes::EntropyBytes(Bytes scan, std::size_t unitBytes)
    : scan(scan)
    , margin(unitBytes + 2 * sizeof(std::uint64_t))
    , held(kHeld + 2 * margin)
    , end(held.data())
    , enough(end)
{
}

Bits EntropyBytes::Start()
{
    end = held.data();
    ended = false;
    TakeIn();
    return { 0, 0, held.data() };
}

bool EntropyBytes::More(Bits& bits)
{
    if (ended)
        return Had(bits);
    const auto left = static_cast<std::size_t>(end - bits.next);
    std::memmove(held.data(), bits.next, left);
    bits.next = held.data();
    end = held.data() + left;
    TakeIn();
    return true;
}

// Fills up what is held. From one mark to the next the bytes are copied as they are.
void EntropyBytes::TakeIn()
{
    const std::uint8_t* const full = held.data() + kHeld + margin;
    while (end < full && !ended) {
        const std::uint8_t* const from = scan.data() + at;
        const std::size_t most = std::min(static_cast<std::size_t>(full - end), scan.size() - at);
        const void* const mark = most == 0 ? nullptr : std::memchr(from, kMark, most);
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
            *end++ = kMark;
            at += 2;
        }
    }
    if (ended)
        std::memset(end, 0, margin);
    enough = ended ? end : end - margin;
}

bool EntropyBytes::Had(const Bits& bits) const noexcept
{
    return 8 * (bits.next - end) <= static_cast<std::ptrdiff_t>(bits.count);
}

bool EntropyBytes::PassRestart(const Bits& bits, unsigned number)
{
    constexpr unsigned kRestart0 = 0xD0;
    const auto whole = static_cast<std::ptrdiff_t>(bits.count / 8); // bytes that nobody has asked for
    if (!ended || bits.next - whole != end)
        return false;
    while (at < scan.size() && scan[at] == kMark) // marks may be repeated: T.81, B.1.1.2
        ++at;
    return at < scan.size() && scan[at++] == kRestart0 + number;
}

} // namespace veltrane::imaging::jpeg::baseline
