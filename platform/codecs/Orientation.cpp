#include "platform/codecs/Orientation.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace veltrane::codecs {

namespace {

using Pixel = std::uint32_t; // one RGBA pixel, moved as a whole

// All pixels for writing, row 0 first; the allocator aligns them for any type.
Pixel* Pixels(Bitmap& picture)
{
    return reinterpret_cast<Pixel*>(picture.Writable());
}

Bitmap MirrorRows(Bitmap picture)
{
    Pixel* row = Pixels(picture);
    for (int y = 0; y < picture.Height(); ++y, row += picture.Width())
        std::reverse(row, row + picture.Width());
    return picture;
}

Bitmap SwapRows(Bitmap picture)
{
    Pixel* const first = Pixels(picture);
    const auto width = static_cast<std::ptrdiff_t>(picture.Width());
    for (int y = 0; y < picture.Height() / 2; ++y) {
        Pixel* const upper = first + width * y;
        std::swap_ranges(upper, upper + width, first + width * (picture.Height() - 1 - y));
    }
    return picture;
}

Bitmap TurnRound(Bitmap picture)
{
    Pixel* const first = Pixels(picture);
    std::reverse(first, first + static_cast<std::ptrdiff_t>(picture.Width()) * picture.Height());
    return picture;
}

// Where the rows of a picture lie once rows and columns are exchanged: stored (x, y) goes to
// origin + x * alongX + y * alongY.
struct Exchange {
    Pixel* origin;
    std::ptrdiff_t alongX, alongY;
};

Exchange ExchangeFor(Bitmap& target, Orientation orientation)
{
    const std::ptrdiff_t width = target.Width();
    const std::ptrdiff_t height = target.Height();
    Pixel* const first = Pixels(target);
    Pixel* const lastRow = first + width * (height - 1);
    switch (orientation) {
    case Orientation::RightTop: return { first + width - 1, width, -1 };
    case Orientation::RightBottom: return { lastRow + width - 1, -width, -1 };
    case Orientation::LeftBottom: return { lastRow, -width, 1 };
    default: return { first, width, 1 };
    }
}

// Square by square, so that the lines of both pictures that a square touches stay in the cache.
Bitmap ExchangeSides(const Bitmap& stored, Orientation orientation)
{
    constexpr int kSquare = 16;
    Bitmap turned = Bitmap::Uninitialised(stored.Height(), stored.Width());
    turned.Opaque(stored.Opaque());
    const Exchange to = ExchangeFor(turned, orientation);
    const auto* const from = reinterpret_cast<const Pixel*>(stored.Row(0));
    const std::ptrdiff_t stride = stored.Width();
    for (int top = 0; top < stored.Height(); top += kSquare) {
        const int bottom = std::min(top + kSquare, stored.Height());
        for (int left = 0; left < stored.Width(); left += kSquare) {
            const int right = std::min(left + kSquare, stored.Width());
            for (int x = left; x < right; ++x) {
                Pixel* const column = to.origin + x * to.alongX;
                for (int y = top; y < bottom; ++y)
                    column[y * to.alongY] = from[y * stride + x];
            }
        }
    }
    return turned;
}

} // namespace

Orientation OrientationFrom(int tag) noexcept
{
    return tag >= 1 && tag <= 8 ? static_cast<Orientation>(tag) : Orientation::TopLeft;
}

bool SwapsSides(Orientation orientation) noexcept
{
    return orientation >= Orientation::LeftTop;
}

Bitmap Upright(Bitmap stored, Orientation orientation)
{
    if (stored.Empty())
        return stored;
    switch (orientation) {
    case Orientation::TopLeft: return stored;
    case Orientation::TopRight: return MirrorRows(std::move(stored));
    case Orientation::BottomRight: return TurnRound(std::move(stored));
    case Orientation::BottomLeft: return SwapRows(std::move(stored));
    default: return ExchangeSides(stored, orientation);
    }
}

} // namespace veltrane::codecs
