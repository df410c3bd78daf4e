#include "imaging/pixels/PixelBlock.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <tuple>
#include <utility>

#include "imaging/Fault.h"
#include "imaging/pixels/Pages.h"

namespace veltrane::imaging {

namespace {

// The bytes between two places of a block that are to be filled with pixels. Only so many at once: a file's
// header is to be believed about a picture of usual size, and not about gigabytes.
void Prepare(void* block, std::size_t from, std::size_t to) noexcept
{
    constexpr std::size_t kBelieved = std::size_t { 96 } << 20;
    const std::size_t end = std::min(to, kBelieved);
    if (from < end)
        TakePages(static_cast<std::uint8_t*>(block) + from, end - from);
}

// First touch of fresh memory costs several times what a copy costs, so the block that was given back
// last is kept for the next picture. One block, because pictures come one after the other.
class SpareBlock {
public:
    ~SpareBlock() { std::free(memory); }

    // A block of at least `size` bytes, or null. A smaller spare grows, since the pages it has need no first
    // touch any more. One that is far too large is given to the system: it would hold memory for a picture
    // that may never come.
    [[nodiscard]] std::pair<void*, std::size_t> Take(std::size_t size) noexcept
    {
        constexpr std::size_t kFarTooLarge = 8;
        if (capacity / kFarTooLarge > size)
            Keep(nullptr, 0);
        if (memory != nullptr && capacity < size)
            Grow(size);
        return { std::exchange(memory, nullptr), std::exchange(capacity, 0) };
    }
    void Keep(void* block, std::size_t size) noexcept
    {
        std::free(std::exchange(memory, block));
        capacity = size;
    }

private:
    void Grow(std::size_t size) noexcept
    {
        if (void* const grown = std::realloc(memory, size)) {
            memory = grown;
            Prepare(memory, std::exchange(capacity, size), size);
        } else {
            Keep(nullptr, 0); // alone, the new block may fit
        }
    }

    void* memory = nullptr;
    std::size_t capacity = 0;
};

SpareBlock& Spare() noexcept
{
    static SpareBlock spare;
    return spare;
}

bool IsLarge(std::size_t size) noexcept
{
    constexpr std::size_t kLarge = 64 * 1024; // below it the allocator recycles well enough
    return size >= kLarge;
}

void* Given(void* memory)
{
    if (memory == nullptr)
        throw Fault(Fault::NoMemory);
    return memory;
}

} // namespace

AnyBlock::AnyBlock(std::size_t wanted) : size(wanted)
{
    if (IsLarge(wanted))
        std::tie(memory, size) = Spare().Take(wanted);
    if (memory != nullptr)
        return;
    size = wanted;
    memory = Given(std::malloc(size));
    if (IsLarge(size))
        Prepare(memory, 0, size);
}

AnyBlock::~AnyBlock()
{
    if (IsLarge(size))
        Spare().Keep(memory, size);
    else
        std::free(memory);
}

ZeroBlock::ZeroBlock(std::size_t size) : size(size)
{
    memory = Given(IsLarge(size) ? NewPages(size) : std::calloc(1, size));
}

ZeroBlock::~ZeroBlock()
{
    if (IsLarge(size))
        FreePages(memory, size);
    else
        std::free(memory);
}

void Expand(
    const Palette& palette, const std::uint8_t* indices, std::size_t count, std::uint8_t* rgba) noexcept
{
    using Pixels4 = std::uint32_t __attribute__((vector_size(16))); // a third less time than one by one
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const std::uint8_t* const from = indices + i;
        const Pixels4 pixels { palette[from[0]], palette[from[1]], palette[from[2]], palette[from[3]] };
        std::memcpy(rgba + i * sizeof palette[0], &pixels, sizeof pixels);
    }
    for (; i < count; ++i)
        std::memcpy(rgba + i * sizeof palette[0], &palette[indices[i]], sizeof palette[0]);
}

IndexedBlock::IndexedBlock(std::size_t pixels, const Palette& palette, std::size_t slack)
    : pixels(pixels), palette(palette), indices(pixels + slack), at(indices.Data())
{
}

void IndexedBlock::Make()
{
    made.emplace(pixels * sizeof palette[0]);
    memory = made->Data();
    Expand(palette, at, pixels, made->Data());
}

} // namespace veltrane::imaging
