#include "imaging/pixels/Orientation.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace veltrane::imaging {

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

// Rows that are moved at once where rows become columns: the more there are, the fewer pages of the upright
// picture each of them touches; so many still fit the second cache.
constexpr int kStrip = 64;

// Where stored pixels belong in the upright picture: (x, y) goes to origin + x * alongX + y * alongY.
struct Places {
    Pixel* origin;
    std::ptrdiff_t alongX, alongY;
};

Places PlacesIn(Pixel* first, std::ptrdiff_t width, std::ptrdiff_t height, Orientation orientation)
{
    Pixel* const lastRow = first + width * (height - 1);
    switch (orientation) {
    case Orientation::TopLeft: return { first, 1, width };
    case Orientation::TopRight: return { first + width - 1, -1, width };
    case Orientation::BottomRight: return { lastRow + width - 1, -1, -width };
    case Orientation::BottomLeft: return { lastRow, 1, -width };
    case Orientation::LeftTop: return { first, width, 1 };
    case Orientation::RightTop: return { first + width - 1, width, -1 };
    case Orientation::RightBottom: return { lastRow + width - 1, -width, -1 };
    case Orientation::LeftBottom: return { lastRow, -width, 1 };
    }
    return { first, 1, width };
}

// Lays `count` stored rows, of which the first is row `top`, where they belong. Column by column, because
// the few rows stay in the cache while the picture's lines do not.
void PlaceColumns(const Pixel* rows, std::ptrdiff_t width, std::ptrdiff_t top, int count, const Places& to)
{
    for (std::ptrdiff_t x = 0; x < width; ++x) {
        Pixel* column = to.origin + x * to.alongX + top * to.alongY;
        for (const Pixel* from = rows + x; from < rows + count * width; from += width, column += to.alongY)
            *column = *from;
    }
}

void PlaceRows(const Pixel* rows, std::ptrdiff_t width, std::ptrdiff_t top, int count, const Places& to)
{
    for (std::ptrdiff_t y = top; y < top + count; ++y, rows += width) {
        Pixel* const first = to.origin + y * to.alongY;
        if (to.alongX > 0)
            std::copy(rows, rows + width, first);
        else
            std::reverse_copy(rows, rows + width, first - (width - 1));
    }
}

Bitmap ExchangeSides(const Bitmap& stored, Orientation orientation)
{
    Bitmap turned = Bitmap::Uninitialised(stored.Height(), stored.Width());
    turned.Opaque(stored.Opaque());
    const Places to = PlacesIn(Pixels(turned), turned.Width(), turned.Height(), orientation);
    for (int top = 0; top < stored.Height(); top += kStrip) {
        const int count = std::min(kStrip, stored.Height() - top);
        PlaceColumns(reinterpret_cast<const Pixel*>(stored.Row(top)), stored.Width(), top, count, to);
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

UprightRows::UprightRows(int storedWidth, int storedHeight, Orientation orientation)
    : orientation(orientation)
    , storedWidth(storedWidth)
    , storedHeight(storedHeight)
    , picture(SwapsSides(orientation) ? Bitmap::Uninitialised(storedHeight, storedWidth)
                                      : Bitmap::Uninitialised(storedWidth, storedHeight))
    , pixels(picture.Writable())
{
    strip.resize(static_cast<std::size_t>(WorkingBytes(storedWidth, orientation)));
}

std::int64_t UprightRows::WorkingBytes(int storedWidth, Orientation orientation) noexcept
{
    if (orientation == Orientation::TopLeft)
        return 0;
    return std::int64_t { storedWidth } * std::int64_t { Bitmap::kBytesPerPixel } * kStrip;
}

std::uint8_t* UprightRows::Next() noexcept
{
    const std::size_t stride = static_cast<std::size_t>(storedWidth) * Bitmap::kBytesPerPixel;
    return strip.empty() ? pixels + stride * static_cast<std::size_t>(done)
                         : strip.data() + stride * static_cast<std::size_t>(held);
}

void UprightRows::Written(int count) noexcept
{
    if (strip.empty()) {
        done += count;
        return;
    }
    held += count;
    if (held + kAtOnce <= kStrip && done + held < storedHeight)
        return;
    const auto* const rows = reinterpret_cast<const Pixel*>(strip.data());
    auto* const first = reinterpret_cast<Pixel*>(pixels);
    const Places to = PlacesIn(first, picture.Width(), picture.Height(), orientation);
    (SwapsSides(orientation) ? PlaceColumns : PlaceRows)(rows, storedWidth, done, held, to);
    done += std::exchange(held, 0);
}

} // namespace veltrane::imaging
