#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "imaging/pixels/PixelBlock.h"

namespace veltrane::imaging {

/// Pixels: straight (not premultiplied) 8-bit RGBA in byte order, sRGB, rows from the top left without
/// padding. Copying shares the pixels; the first write through one of the copies gives that copy its own.
/// A picture of few colours may be kept as indices into a palette: a fourth of the memory, and what is
/// written with a palette again need not look the colours up. Whoever asks for pixels gets them all the same.
class Bitmap {
public:
    static constexpr std::size_t kBytesPerPixel = 4;

    Bitmap() noexcept = default; ///< no pixels: 0 x 0

    /// Pixels whose values are not set yet. Sides of 1 or more. `slack`: bytes behind the last row that a
    /// decoder may use while it fills the picture; they stay allocated, so keep them few.
    /// Raises Fault::NoMemory when the machine has not the room.
    [[nodiscard]] static Bitmap Uninitialised(int width, int height, std::size_t slack = 0);

    /// Every pixel transparent black; memory is taken as the pixels are touched.
    /// Raises Fault::NoMemory when the machine has not the room.
    [[nodiscard]] static Bitmap Transparent(int width, int height);

    /// Pixels that are told by indices, which are not set yet: see WritableIndices. `slack` as above.
    /// Raises Fault::NoMemory when the machine has not the room.
    [[nodiscard]] static Bitmap Indexed(int width, int height, const Palette& palette, std::size_t slack = 0);

    [[nodiscard]] int Width() const noexcept { return width; }
    [[nodiscard]] int Height() const noexcept { return height; }
    [[nodiscard]] bool Empty() const noexcept { return !block; }

    /// True when every alpha is known to be 255; false says nothing. The one who writes pixels sets it.
    [[nodiscard]] bool Opaque() const noexcept { return opaque; }
    void Opaque(bool yes) noexcept { opaque = yes; }

    /// True while every pixel is known to be transparent black, as Transparent made it.
    [[nodiscard]] bool Blank() const noexcept { return blank; }

    /// Bytes from one row to the next.
    [[nodiscard]] std::size_t Stride() const noexcept
    {
        return static_cast<std::size_t>(width) * kBytesPerPixel;
    }

    /// The row `y`, from 0 to Height - 1: Stride bytes, valid while this Bitmap holds them. Raises
    /// Fault::NoMemory when the pixels are kept as indices and have not the room beside them.
    [[nodiscard]] const std::uint8_t* Row(int y) const;

    /// The indices of row `y`, Width bytes; null when the pixels are not kept so.
    [[nodiscard]] const std::uint8_t* Indices(int y) const noexcept;

    /// The pixel of each index, of pixels that are kept as indices.
    [[nodiscard]] const Palette& Colours() const noexcept { return indexed->Colours(); }

    /// Copies the row `y` to Stride bytes at `rgba`, without keeping the pixels of indices.
    void CopyRow(int y, std::uint8_t* rgba) const noexcept { CopyPixels(0, y, width, rgba); }

    /// The same of `count` pixels of that row, from column `x` on.
    void CopyPixels(int x, int y, int count, std::uint8_t* rgba) const noexcept;

    /// All rows for writing, row 0 first. Copies the pixels first when they are shared or kept as indices;
    /// ask once, not for each row. Raises Fault::NoMemory when that copy does not fit.
    [[nodiscard]] std::uint8_t* Writable();

    /// All indices, row 0 first, for who has just made an Indexed picture: before it is copied, and before
    /// pixels are asked for.
    [[nodiscard]] std::uint8_t* WritableIndices() noexcept;

    /// True when both hold the same pixels in memory, so that neither has been written since the copy.
    [[nodiscard]] bool SharesPixelsWith(const Bitmap& other) const noexcept { return block == other.block; }

private:
    Bitmap(int width, int height, std::shared_ptr<PixelBlock> block) noexcept;

    int width = 0;
    int height = 0;
    bool opaque = false;
    bool blank = false;
    std::shared_ptr<PixelBlock> block;
    IndexedBlock* indexed = nullptr; ///< the same block, when it is one of indices
};

} // namespace veltrane::imaging
