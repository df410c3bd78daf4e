#include "imaging/jpeg/Decode.h"

#include <algorithm>
#include <vector>

#include "imaging/colour/Colour.h"
#include "imaging/jpeg/Reader.h"

namespace veltrane::imaging::jpeg {

namespace {

using Transform = std::shared_ptr<const ColourTransform>;

Transform FromProfile(const Reader& reader, Samples from)
{
    const auto profile = reader.Segments().Profile();
    return profile.empty() ? nullptr : ColourTransform::FromProfile(profile, from);
}

// Rows decoded into the layout of Bitmap. A colour transform converts them in small groups, while they are in
// the cache.
void DecodeColour(Reader& reader, UprightRows& picture)
{
    const Transform transform
        = reader.Stored() == Kind::Colour ? FromProfile(reader, Samples::Rgba8) : nullptr;
    const auto width = static_cast<std::size_t>(reader.Width());
    reader.Start(Layout::Rgba);
    for (int left = reader.Height(); left > 0;) {
        std::uint8_t* const rows = picture.Next();
        const int count
            = reader.Rows(rows, width * Bitmap::kBytesPerPixel, std::min(left, UprightRows::kAtOnce));
        if (transform)
            transform->Apply(rows, rows, width * static_cast<std::size_t>(count));
        picture.Written(count);
        left -= count;
    }
}

// Samples of another layout than Bitmap's, converted a few rows at a time.
void DecodeThrough(Reader& reader, const ColourTransform& transform, Layout layout, UprightRows& picture)
{
    const auto width = static_cast<std::size_t>(reader.Width());
    const std::size_t stride = layout == Layout::Cmyk ? 4 * width : width;
    const bool invert = layout == Layout::Cmyk && reader.InvertedCmyk();
    std::vector<std::uint8_t> strip(stride * UprightRows::kAtOnce);
    reader.Start(layout);
    for (int left = reader.Height(); left > 0;) {
        const int count = reader.Rows(strip.data(), stride, std::min(left, UprightRows::kAtOnce));
        if (invert)
            std::ranges::for_each(strip, [](std::uint8_t& v) { v = static_cast<std::uint8_t>(~v); });
        transform.Apply(strip.data(), picture.Next(), width * static_cast<std::size_t>(count));
        picture.Written(count);
        left -= count;
    }
}

void DecodePixels(Reader& reader, UprightRows& picture)
{
    if (reader.Stored() == Kind::Cmyk) {
        const Transform profile = FromProfile(reader, Samples::Cmyk8);
        const Transform cmyk = profile ? profile : ColourTransform::FromUntaggedInks(Samples::Cmyk8);
        return DecodeThrough(reader, *cmyk, Layout::Cmyk, picture);
    }
    const Transform grey = reader.Stored() == Kind::Grey ? FromProfile(reader, Samples::Grey8) : nullptr;
    if (grey)
        DecodeThrough(reader, *grey, Layout::Grey, picture);
    else
        DecodeColour(reader, picture);
}

} // namespace

Bitmap Decode(Bytes file, const Limits& limits)
{
    Reader reader(file, limits);
    UprightRows rows(reader.Width(), reader.Height(), reader.Segments().Turn());
    DecodePixels(reader, rows);
    Bitmap picture = rows.Take();
    picture.Opaque(true);
    return picture;
}

} // namespace veltrane::imaging::jpeg
