#include "imaging/gif/Gif.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "imaging/Fault.h"
#include "imaging/gif/Reader.h"

namespace veltrane::imaging {

namespace {

// The frame on its screen: what can be seen of it.
struct Layout {
    int screenWidth = 0;
    int screenHeight = 0;
    int left = 0;
    int top = 0;
    int visibleWidth = 0;
    int visibleHeight = 0;

    [[nodiscard]] bool CoversScreen() const noexcept
    {
        return visibleWidth == screenWidth && visibleHeight == screenHeight;
    }
};

Layout LayOut(const GifReader& reader)
{
    const GifFrame& frame = reader.Frame();
    if (frame.width == 0 || frame.height == 0)
        throw Fault(Fault::NoPixels);
    Layout layout { reader.ScreenWidth(), reader.ScreenHeight(), frame.left, frame.top, 0, 0 };
    if (layout.screenWidth == 0 || layout.screenHeight == 0)
        layout = { frame.width, frame.height, 0, 0, 0, 0 };
    layout.visibleWidth = std::clamp(layout.screenWidth - layout.left, 0, frame.width);
    layout.visibleHeight = std::clamp(layout.screenHeight - layout.top, 0, frame.height);
    return layout;
}

// The frame's rows, top row 0, in the order in which the file holds them (GIF 89a, appendix E).
std::vector<int> RowOrder(const GifFrame& frame)
{
    struct Pass {
        int first, step;
    };
    constexpr Pass kPlain[] { { 0, 1 } };
    constexpr Pass kInterlaced[] { { 0, 8 }, { 4, 8 }, { 2, 4 }, { 1, 2 } };
    const std::span<const Pass> passes = frame.interlaced ? std::span<const Pass>(kInterlaced) : kPlain;
    std::vector<int> order;
    order.reserve(static_cast<std::size_t>(frame.height));
    for (const Pass& pass : passes) {
        for (int y = pass.first; y < frame.height; y += pass.step)
            order.push_back(y);
    }
    return order;
}

// The rows to read for all that can be seen: nothing of the frame is wanted behind them.
std::vector<int> WantedRows(const GifFrame& frame, const Layout& layout)
{
    std::vector<int> order = RowOrder(frame);
    const auto seen = [&](int y) { return y < layout.visibleHeight; };
    if (layout.visibleWidth == 0)
        order.clear();
    order.erase(std::find_if(order.rbegin(), order.rend(), seen).base(), order.end());
    return order;
}

// A frame far larger than its screen is read for nothing; a few bytes can make it gigapixels large.
void CheckWork(const GifFrame& frame, std::size_t rows, const Layout& layout)
{
    constexpr std::int64_t kAlwaysFine = std::int64_t { 1 } << 28;
    constexpr std::int64_t kMostPerPixel = 8;
    const std::int64_t work = static_cast<std::int64_t>(rows) * frame.width;
    const std::int64_t screen = std::int64_t { layout.screenWidth } * layout.screenHeight;
    if (work > kAlwaysFine && work / kMostPerPixel > screen)
        throw Fault(Fault::GifFrameOutOfProportion);
}

// Calls `paint` with the place of each row that is seen, in the frame, and its indices.
template<class Painting>
void PaintRows(GifReader& reader, const Layout& layout, const std::vector<int>& rows, Painting paint)
{
    for (const int y : rows) {
        const std::uint8_t* const indices = reader.ReadRow();
        if (y < layout.visibleHeight)
            paint(static_cast<std::size_t>(y), indices);
    }
}

// Where the frame has no index for what lies around it.
Bitmap PaintPixels(GifReader& reader, const Layout& layout, const std::vector<int>& rows)
{
    Bitmap picture = Bitmap::Transparent(layout.screenWidth, layout.screenHeight);
    const Palette colours = reader.Colours();
    std::uint8_t* const corner = picture.Writable()
        + static_cast<std::size_t>(layout.left) * Bitmap::kBytesPerPixel
        + static_cast<std::size_t>(layout.top) * picture.Stride();
    PaintRows(reader, layout, rows, [&](std::size_t y, const std::uint8_t* indices) {
        std::uint8_t* to = corner + y * picture.Stride();
        for (int x = 0; x < layout.visibleWidth; ++x, to += Bitmap::kBytesPerPixel)
            std::memcpy(to, &colours[indices[x]], Bitmap::kBytesPerPixel);
    });
    return picture;
}

Bitmap PaintIndices(GifReader& reader, const Layout& layout, const std::vector<int>& rows)
{
    Bitmap picture = Bitmap::Indexed(layout.screenWidth, layout.screenHeight, reader.Colours());
    const auto width = static_cast<std::size_t>(picture.Width()),
               seen = static_cast<std::size_t>(layout.visibleWidth);
    const int transparent = reader.TransparentIndex();
    std::uint8_t* const all = picture.WritableIndices();
    if (!layout.CoversScreen())
        std::memset(all, transparent, width * static_cast<std::size_t>(picture.Height()));
    std::uint8_t* const corner
        = all + static_cast<std::size_t>(layout.left) + static_cast<std::size_t>(layout.top) * width;
    bool opaque = layout.CoversScreen();
    PaintRows(reader, layout, rows, [&](std::size_t y, const std::uint8_t* indices) {
        std::memcpy(corner + y * width, indices, seen);
        opaque = opaque && (transparent < 0 || std::memchr(indices, transparent, seen) == nullptr);
    });
    picture.Opaque(opaque);
    return picture;
}

Bitmap Paint(GifReader& reader, const Layout& layout, const std::vector<int>& rows)
{
    const bool byIndices = layout.CoversScreen() || reader.TransparentIndex() >= 0;
    return byIndices ? PaintIndices(reader, layout, rows) : PaintPixels(reader, layout, rows);
}

bool Probe(Bytes head) noexcept
{
    constexpr std::size_t kSignature = 6;
    return head.size() >= kSignature
        && (std::memcmp(head.data(), "GIF87a", kSignature) == 0
            || std::memcmp(head.data(), "GIF89a", kSignature) == 0);
}

Bitmap Decode(Bytes file, const Limits& limits)
{
    GifReader reader(file);
    const Layout layout = LayOut(reader);
    limits.Check(layout.screenWidth, layout.screenHeight);
    const std::vector<int> rows = WantedRows(reader.Frame(), layout);
    CheckWork(reader.Frame(), rows.size(), layout);
    return Paint(reader, layout, rows);
}

} // namespace

const Codec kGif { "GIF", Probe, Decode, nullptr };

} // namespace veltrane::imaging
