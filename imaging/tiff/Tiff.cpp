#include "imaging/tiff/Tiff.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <utility>

#include "imaging/tiff/File.h"
#include "imaging/tiff/Library.h"
#include "imaging/tiff/Page.h"
#include "imaging/tiff/Painter.h"
#include "imaging/tiff/Rows.h"

namespace veltrane::imaging {

namespace {

bool Probe(Bytes head) noexcept
{
    using Mark = std::array<std::uint8_t, 4>;
    constexpr Mark kMarks[] { { 'I', 'I', 42, 0 }, { 'M', 'M', 0, 42 }, { 'I', 'I', 43, 0 },
        { 'M', 'M', 0, 43 } };
    return head.size() >= 8
        && std::ranges::any_of(kMarks, [&](const Mark& m) { return std::ranges::equal(m, head.first(4)); });
}

// Sides first: everything else is calculated from them.
void CheckLimits(const TiffFile& file, const TiffPage& page, const Limits& limits)
{
    limits.Check(page.width, page.height);
    const std::int64_t turned = SwapsSides(page.orientation)
        ? page.width * page.height * std::int64_t { Bitmap::kBytesPerPixel }
        : 0;
    limits.Check(page.width, page.height, WorkingBytes(file, page) + turned);
}

Bitmap Paint(TiffFile& file, const TiffPage& page)
{
    const auto painter = MakePainter(page);
    Bitmap picture = Bitmap::Uninitialised(static_cast<int>(page.width), static_cast<int>(page.height));
    std::uint8_t* const rgba = picture.Writable();
    const std::size_t stride = picture.Stride();
    ReadRows(file, page, [&](const TiffRow& row) {
        painter->Paint(row,
            rgba + stride * static_cast<std::size_t>(row.y)
                + Bitmap::kBytesPerPixel * static_cast<std::size_t>(row.x));
    });
    picture.Opaque(painter->Opaque());
    return picture;
}

Bitmap KeepIndices(TiffFile& file, const TiffPage& page, const Palette& palette)
{
    Bitmap picture = Bitmap::Indexed(static_cast<int>(page.width), static_cast<int>(page.height), palette);
    std::uint8_t* const indices = picture.WritableIndices();
    const auto width = static_cast<std::size_t>(page.width);
    ReadRows(file, page, [&](const TiffRow& row) {
        std::memcpy(indices + width * static_cast<std::size_t>(row.y) + static_cast<std::size_t>(row.x),
            row.planes[0], static_cast<std::size_t>(row.pixels));
    });
    picture.Opaque(true);
    return picture;
}

Bitmap ReadPixels(TiffFile& file, const TiffPage& page)
{
    if (page.colour == TiffColour::Library)
        return ReadByLibrary(file, page);
    const std::optional<Palette> palette = ByteColours(page);
    return palette ? KeepIndices(file, page, *palette) : Paint(file, page);
}

Bitmap Decode(Bytes bytes, const Limits& limits)
{
    TiffFile file(bytes, limits);
    const TiffPage page = ReadPage(file);
    CheckLimits(file, page, limits);
    file.BeginPixels();
    return Upright(ReadPixels(file, page), page.orientation);
}

} // namespace

const Codec kTiff { "TIFF", Probe, Decode, nullptr };

} // namespace veltrane::imaging
