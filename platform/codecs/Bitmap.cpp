#include "platform/codecs/Bitmap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <tuple>
#include <utility>

#include "platform/Exceptions.h"
#include "platform/codecs/Pages.h"

namespace veltrane::codecs {

namespace {

// The bytes between two places of a block that are to be filled with pixels. Only so many at once: a file's
// header is to be believed about a picture of usual size, and not about gigabytes.
void Prepare(void* block, std::size_t from, std::size_t to) noexcept
{
    constexpr std::size_t kBelieved = std::size_t { 128 } << 20;
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

} // namespace

/// Owns the memory of pixels.
class PixelBlock {
public:
    explicit PixelBlock(std::size_t size) : size(size) { }
    virtual ~PixelBlock() = default;
    PixelBlock(const PixelBlock&) = delete;
    PixelBlock& operator=(const PixelBlock&) = delete;

    [[nodiscard]] std::uint8_t* Data() const noexcept { return static_cast<std::uint8_t*>(memory); }

protected:
    [[nodiscard]] bool Large() const noexcept
    {
        constexpr std::size_t kLarge = 64 * 1024; // below it the allocator recycles well enough
        return size >= kLarge;
    }
    void Own(void* block)
    {
        if (block == nullptr)
            throw OutOfMemoryException("mémoire insuffisante pour cette image");
        memory = block;
    }

    void* memory = nullptr;
    std::size_t size;
};

namespace {

/// Whatever it held before.
class AnyBlock final : public PixelBlock {
public:
    explicit AnyBlock(std::size_t wanted) : PixelBlock(wanted)
    {
        if (Large())
            std::tie(memory, size) = Spare().Take(wanted);
        if (memory == nullptr)
            TakeNew(wanted);
    }
    ~AnyBlock() override
    {
        if (Large())
            Spare().Keep(memory, size);
        else
            std::free(memory);
    }

private:
    void TakeNew(std::size_t wanted)
    {
        size = wanted;
        Own(std::malloc(size));
        if (Large())
            Prepare(memory, 0, size);
    }
};

/// Zeros. Not recycled, as nobody may ever touch it.
class ZeroBlock final : public PixelBlock {
public:
    explicit ZeroBlock(std::size_t size) : PixelBlock(size)
    {
        Own(Large() ? NewPages(size) : std::calloc(1, size));
    }
    ~ZeroBlock() override { Large() ? FreePages(memory, size) : std::free(memory); }
};

std::size_t Bytes(int width, int height)
{
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * Bitmap::kBytesPerPixel;
}

} // namespace

Bitmap::Bitmap(int width, int height, std::shared_ptr<PixelBlock> block) noexcept
    : width(width), height(height), block(std::move(block))
{
}

Bitmap Bitmap::Uninitialised(int width, int height, std::size_t slack)
{
    return { width, height, std::make_shared<AnyBlock>(Bytes(width, height) + slack) };
}

Bitmap Bitmap::Transparent(int width, int height)
{
    Bitmap bitmap(width, height, std::make_shared<ZeroBlock>(Bytes(width, height)));
    bitmap.blank = true;
    return bitmap;
}

const std::uint8_t* Bitmap::Row(int y) const noexcept
{
    return block->Data() + static_cast<std::size_t>(y) * Stride();
}

std::uint8_t* Bitmap::Writable()
{
    blank = false;
    if (block.use_count() > 1) {
        auto own = std::make_shared<AnyBlock>(Bytes(width, height));
        std::memcpy(own->Data(), block->Data(), Stride() * static_cast<std::size_t>(height));
        block = std::move(own);
    }
    return block->Data();
}

} // namespace veltrane::codecs
