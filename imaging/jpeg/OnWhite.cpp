#include "imaging/jpeg/OnWhite.h"

#include "imaging/jpeg/Pixels.h"

namespace veltrane::imaging::jpeg {

namespace {

Palette Laid(const Palette& colours)
{
    Palette laid {};
    LayOnWhite(reinterpret_cast<const std::uint8_t*>(colours.data()),
        reinterpret_cast<std::uint8_t*>(laid.data()), colours.size());
    return laid;
}

} // namespace

OnWhite::OnWhite(const Bitmap& picture, bool opaque) : picture(picture), opaque(opaque)
{
    if (picture.Indices(0) != nullptr)
        laid = Laid(picture.Colours());
    if (laid || !opaque)
        strip.resize(kAtOnce * picture.Stride());
}

const std::uint8_t* OnWhite::Rows(int y, int count)
{
    if (strip.empty())
        return picture.Row(y);
    std::uint8_t* to = strip.data();
    for (int row = y; row < y + count; ++row, to += picture.Stride())
        Copy(0, row, picture.Width(), to);
    return strip.data();
}

void OnWhite::Copy(int x, int y, int count, std::uint8_t* rgba) const
{
    const auto pixels = static_cast<std::size_t>(count);
    if (laid)
        Expand(*laid, picture.Indices(y) + x, pixels, rgba);
    else if (opaque)
        picture.CopyPixels(x, y, count, rgba);
    else
        LayOnWhite(picture.Row(y) + static_cast<std::size_t>(x) * Bitmap::kBytesPerPixel, rgba, pixels);
}

} // namespace veltrane::imaging::jpeg
