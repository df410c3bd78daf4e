#include "platform/codecs/jpeg/Decode.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

#include "platform/Exceptions.h"
#include "platform/codecs/Colour.h"
#include "platform/codecs/jpeg/Reader.h"

namespace veltrane::codecs::jpeg {

namespace {

using Transform = std::shared_ptr<const ColourTransform>;

Transform FromProfile(const Reader& reader, Samples from)
{
    const auto profile = reader.Segments().Profile();
    return profile.empty() ? nullptr : ColourTransform::FromProfile(profile, from);
}

// Straight into the picture; with a transform, each few rows are converted while they are in the cache.
void DecodeColour(Reader& reader, Bitmap& picture)
{
    const Transform transform
        = reader.Stored() == Kind::Colour ? FromProfile(reader, Samples::Rgba8) : nullptr;
    const std::size_t stride = picture.Stride();
    std::uint8_t* rows = picture.Writable();
    reader.Start(Layout::Rgba);
    for (int y = 0; y < picture.Height();) {
        const int count = reader.Rows(rows, stride, picture.Height() - y);
        const std::size_t pixels
            = static_cast<std::size_t>(count) * static_cast<std::size_t>(picture.Width());
        if (transform)
            transform->Apply(rows, rows, pixels);
        rows += pixels * Bitmap::kBytesPerPixel;
        y += count;
    }
}

// Samples of another layout, converted a few rows at a time.
void DecodeThrough(Reader& reader, const ColourTransform& transform, Layout layout, Bitmap& picture)
{
    constexpr int kAtOnce = 16;
    const auto width = static_cast<std::size_t>(picture.Width());
    const std::size_t stride = layout == Layout::Cmyk ? 4 * width : width;
    const bool invert = layout == Layout::Cmyk && reader.InvertedInks();
    std::vector<std::uint8_t> strip(stride * kAtOnce);
    std::uint8_t* rows = picture.Writable();
    reader.Start(layout);
    for (int y = 0; y < picture.Height();) {
        const int count = reader.Rows(strip.data(), stride, std::min(kAtOnce, picture.Height() - y));
        if (invert)
            std::ranges::for_each(strip, [](std::uint8_t& v) { v = static_cast<std::uint8_t>(~v); });
        transform.Apply(strip.data(), rows, width * static_cast<std::size_t>(count));
        rows += picture.Stride() * static_cast<std::size_t>(count);
        y += count;
    }
}

void DecodePixels(Reader& reader, Bitmap& picture)
{
    if (reader.Stored() == Kind::Inks) {
        const Transform profile = FromProfile(reader, Samples::Cmyk8);
        const Transform inks = profile ? profile : ColourTransform::FromUntaggedInks(Samples::Cmyk8);
        return DecodeThrough(reader, *inks, Layout::Cmyk, picture);
    }
    const Transform grey = reader.Stored() == Kind::Grey ? FromProfile(reader, Samples::Grey8) : nullptr;
    if (grey)
        DecodeThrough(reader, *grey, Layout::Grey, picture);
    else
        DecodeColour(reader, picture);
}

} // namespace

Info ReadInfo(Bytes file, const Limits& limits)
{
    try {
        const Reader reader(file, limits);
        const bool swap = SwapsSides(reader.Segments().Turn());
        return { swap ? reader.Height() : reader.Width(), swap ? reader.Width() : reader.Height() };
    } catch (const std::bad_alloc&) {
        throw OutOfMemoryException("mémoire insuffisante pour cette image");
    }
}

Bitmap Decode(Bytes file, const Limits& limits)
{
    try {
        Reader reader(file, limits);
        Bitmap picture = Bitmap::Uninitialised(reader.Width(), reader.Height());
        picture.Opaque(true);
        DecodePixels(reader, picture);
        return Upright(std::move(picture), reader.Segments().Turn());
    } catch (const std::bad_alloc&) {
        throw OutOfMemoryException("mémoire insuffisante pour cette image");
    }
}

} // namespace veltrane::codecs::jpeg
