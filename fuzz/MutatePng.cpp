// Changes a PNG as libFuzzer would, then sets each chunk's checksum right: a change would be refused before
// its meaning is looked at, were its checksum left wrong. Now and then it is left wrong.

#include <cstddef>
#include <cstdint>

#include "imaging/png/Checksum.h"

using namespace veltrane;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

std::uint32_t Number(const std::uint8_t* at) noexcept
{
    return std::uint32_t { at[0] } << 24 | std::uint32_t { at[1] } << 16 | std::uint32_t { at[2] } << 8
        | at[3];
}

void PutNumber(std::uint8_t* to, std::uint32_t number) noexcept
{
    for (int i = 0; i < 4; ++i)
        to[i] = static_cast<std::uint8_t>(number >> (24 - 8 * i));
}

// As far as the chunks' lengths make sense. Source: PNG 3rd ed., 5.3.
void SetChecksums(std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kSignature = 8, kAround = 12; // length, type and checksum
    for (std::size_t at = kSignature; at + kAround <= size;) {
        const std::size_t length = Number(data + at);
        if (length > size - at - kAround)
            return;
        PutNumber(data + at + 8 + length, imaging::png::ChecksumOf({ data + at + 4, length + 4 }));
        at += kAround + length;
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(
    std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    constexpr unsigned kLeftWrong = 16; // one in so many
    size = LLVMFuzzerMutate(data, size, most);
    if (seed % kLeftWrong != 0)
        SetChecksums(data, size);
    return size;
}
