#include "imaging/pixels/Bitmap.h"

#include <cstring>
#include <utility>

namespace veltrane::imaging {

namespace {

std::size_t Pixels(int width, int height)
{
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

} // namespace

Bitmap::Bitmap(int width, int height, std::shared_ptr<PixelBlock> block) noexcept
    : width(width), height(height), block(std::move(block))
{
}

Bitmap Bitmap::Uninitialised(int width, int height, std::size_t slack)
{
    return { width, height, std::make_shared<AnyBlock>(Pixels(width, height) * kBytesPerPixel + slack) };
}

Bitmap Bitmap::Transparent(int width, int height)
{
    Bitmap bitmap(width, height, std::make_shared<ZeroBlock>(Pixels(width, height) * kBytesPerPixel));
    bitmap.blank = true;
    return bitmap;
}

Bitmap Bitmap::Indexed(int width, int height, const Palette& palette, std::size_t slack)
{
    auto indexed = std::make_shared<IndexedBlock>(Pixels(width, height), palette, slack);
    Bitmap bitmap(width, height, indexed);
    bitmap.indexed = indexed.get();
    return bitmap;
}

const std::uint8_t* Bitmap::Row(int y) const
{
    return block->Data() + static_cast<std::size_t>(y) * Stride();
}

const std::uint8_t* Bitmap::Indices(int y) const noexcept
{
    return indexed == nullptr ? nullptr : indexed->Indices() + Pixels(width, y);
}

void Bitmap::CopyPixels(int x, int y, int count, std::uint8_t* rgba) const noexcept
{
    const std::size_t first = Pixels(width, y) + static_cast<std::size_t>(x);
    const auto pixels = static_cast<std::size_t>(count);
    if (indexed != nullptr)
        Expand(indexed->Colours(), indexed->Indices() + first, pixels, rgba);
    else
        std::memcpy(rgba, block->Data() + first * kBytesPerPixel, pixels * kBytesPerPixel);
}

std::uint8_t* Bitmap::Writable()
{
    blank = false;
    if (indexed != nullptr || block.use_count() > 1) {
        const auto own = std::make_shared<AnyBlock>(Pixels(width, height) * kBytesPerPixel);
        for (int y = 0; y < height; ++y)
            CopyRow(y, own->Data() + static_cast<std::size_t>(y) * Stride());
        block = own;
        indexed = nullptr;
    }
    return block->Data();
}

std::uint8_t* Bitmap::WritableIndices() noexcept
{
    return indexed->Indices();
}

} // namespace veltrane::imaging
