#include "platform/codecs/Bitmap.h"

#include <cstdlib>
#include <cstring>
#include <tuple>
#include <utility>

#include "platform/Exceptions.h"

namespace veltrane::codecs {

namespace {

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
            capacity = size;
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

constexpr std::size_t kSmallestSpare = 64 * 1024; // below it the allocator recycles well enough

} // namespace

/// Owns the memory of pixels.
class PixelBlock {
public:
    enum class Content { Any, Zero };

    PixelBlock(std::size_t size, Content content) : capacity(size)
    {
        if (content == Content::Any && size >= kSmallestSpare)
            std::tie(memory, capacity) = Spare().Take(size);
        if (memory == nullptr) {
            capacity = size;
            // Large zeroed blocks come straight from the system and cost nothing before they are touched.
            memory = content == Content::Zero ? std::calloc(1, size) : std::malloc(size);
        }
        if (memory == nullptr)
            throw OutOfMemoryException("mémoire insuffisante pour cette image");
    }
    ~PixelBlock()
    {
        if (capacity >= kSmallestSpare)
            Spare().Keep(memory, capacity);
        else
            std::free(memory);
    }
    PixelBlock(const PixelBlock&) = delete;
    PixelBlock& operator=(const PixelBlock&) = delete;

    [[nodiscard]] std::uint8_t* Data() noexcept { return static_cast<std::uint8_t*>(memory); }

private:
    void* memory = nullptr;
    std::size_t capacity;
};

namespace {

std::shared_ptr<PixelBlock> Allocate(
    int width, int height, PixelBlock::Content content, std::size_t slack = 0)
{
    const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    return std::make_shared<PixelBlock>(pixels * Bitmap::kBytesPerPixel + slack, content);
}

} // namespace

Bitmap::Bitmap(int width, int height, std::shared_ptr<PixelBlock> block) noexcept
    : width(width), height(height), block(std::move(block))
{
}

Bitmap Bitmap::Uninitialised(int width, int height, std::size_t slack)
{
    return { width, height, Allocate(width, height, PixelBlock::Content::Any, slack) };
}

Bitmap Bitmap::Transparent(int width, int height)
{
    Bitmap bitmap(width, height, Allocate(width, height, PixelBlock::Content::Zero));
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
        auto own = Allocate(width, height, PixelBlock::Content::Any);
        std::memcpy(own->Data(), block->Data(), Stride() * static_cast<std::size_t>(height));
        block = std::move(own);
    }
    return block->Data();
}

} // namespace veltrane::codecs
