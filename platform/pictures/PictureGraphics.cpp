#include "platform/pictures/PictureGraphics.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "imaging/pixels/Scaler.h"
#include "platform/pictures/Faults.h"

namespace veltrane {

namespace {

using imaging::Bitmap;

// The pixels from `begin` up to `end` on one axis.
struct Span {
    int begin, end;
};

// The pixels whose centres lie in [from, from + length), within a picture's side.
Span Covered(double from, double length, int side)
{
    const auto edge = [side](double at) {
        return static_cast<int>(std::clamp(std::ceil(at - 0.5), 0.0, static_cast<double>(side)));
    };
    return { edge(from), edge(from + length) };
}

// One axis of a draw: where it goes and what of the source it takes.
struct Axis {
    double to, length, from, fromLength;
    int side, sourceSide;

    Axis(double to, double length, int side, double from, double fromLength, int sourceSide)
        : to(to)
        , length(length == Graphics::kOwnSize ? sourceSide : length)
        , from(from)
        , fromLength(fromLength == Graphics::kOwnSize ? sourceSide : fromLength)
        , side(side)
        , sourceSide(sourceSide)
    {
    }

    // Every pixel of the source onto the pixel of the same place, and nothing left over.
    [[nodiscard]] bool IsIdentity() const
    {
        return side == sourceSide && to == 0 && from == 0 && length == side && fromLength == side;
    }
    [[nodiscard]] Span Pixels() const { return Covered(to, length, side); }

    // How much of the source a destination pixel covers.
    [[nodiscard]] double Step() const { return fromLength / length; }
    [[nodiscard]] bool StaysInside() const { return from >= 0 && from + fromLength <= sourceSide; }

    // Where the edge before destination pixel `at` falls in the source, within the part that is taken.
    [[nodiscard]] double EdgeOf(int at) const
    {
        return std::clamp(from + (at - to) * Step(), from, from + fromLength);
    }

    // Where the centre of destination pixel `at` falls in the source.
    [[nodiscard]] int SourceOf(int at) const
    {
        const double position = from + (at + 0.5 - to) * fromLength / length;
        return static_cast<int>(std::clamp(std::floor(position), 0.0, sourceSide - 1.0));
    }
};

// Porter and Duff's "over" on straight alpha.
void Over(std::uint8_t* below, const std::uint8_t* above)
{
    const unsigned alpha = above[3];
    if (alpha == 255 || below[3] == 0) {
        std::memcpy(below, above, Bitmap::kBytesPerPixel);
        return;
    }
    const unsigned rest = below[3] * (255 - alpha);
    const unsigned sum = alpha * 255 + rest;
    if (sum == 0)
        return;
    for (int i = 0; i < 3; ++i)
        below[i] = static_cast<std::uint8_t>((above[i] * alpha * 255 + below[i] * rest + sum / 2) / sum);
    below[3] = static_cast<std::uint8_t>((sum + 127) / 255);
}

void DrawNearest(
    Bitmap& pixels, const Bitmap& source, const Axis& across, const Axis& down, Span columns, Span rows)
{
    std::uint8_t* const memory = pixels.Writable();
    for (int row = rows.begin; row < rows.end; ++row) {
        const std::uint8_t* const from = source.Row(down.SourceOf(row));
        std::uint8_t* const to = memory + static_cast<std::size_t>(row) * pixels.Stride();
        for (int column = columns.begin; column < columns.end; ++column) {
            const auto taken = static_cast<std::size_t>(across.SourceOf(column));
            Over(to + static_cast<std::size_t>(column) * Bitmap::kBytesPerPixel,
                from + taken * Bitmap::kBytesPerPixel);
        }
    }
}

// From colours weighted by alpha to straight ones.
void Straighten(std::uint8_t* pixel)
{
    const unsigned alpha = pixel[3];
    for (int i = 0; i < 3 && alpha != 0; ++i)
        pixel[i] = static_cast<std::uint8_t>(std::min((pixel[i] * 255U + alpha / 2) / alpha, 255U));
}

// Each pixel takes the average of what it covers.
void DrawAveraged(
    Bitmap& pixels, const Bitmap& source, const Axis& across, const Axis& down, Span columns, Span rows)
{
    Bitmap scaled = Bitmap::Uninitialised(columns.end - columns.begin, rows.end - rows.begin);
    std::uint8_t* pixel = scaled.Writable();
    const double left = across.EdgeOf(columns.begin), top = down.EdgeOf(rows.begin);
    imaging::ScaleByArea(source,
        { left, top, across.EdgeOf(columns.end) - left, down.EdgeOf(rows.end) - top },
        { pixel, scaled.Width(), scaled.Height(), scaled.Stride() });
    std::uint8_t* const memory = pixels.Writable();
    for (int row = rows.begin; row < rows.end; ++row) {
        std::uint8_t* to = memory + static_cast<std::size_t>(row) * pixels.Stride()
            + static_cast<std::size_t>(columns.begin) * Bitmap::kBytesPerPixel;
        for (int i = 0; i < scaled.Width(); ++i) {
            Straighten(pixel);
            Over(to, pixel);
            to += Bitmap::kBytesPerPixel;
            pixel += Bitmap::kBytesPerPixel;
        }
    }
}

void DrawScaled(Bitmap& pixels, const Bitmap& source, const Axis& across, const Axis& down)
{
    const Span columns = across.Pixels();
    const Span rows = down.Pixels();
    if (columns.begin >= columns.end || rows.begin >= rows.end)
        return;
    const bool shrinks = across.Step() >= 1 && down.Step() >= 1 && across.Step() * down.Step() > 1;
    const auto draw = shrinks && across.StaysInside() && down.StaysInside() ? DrawAveraged : DrawNearest;
    draw(pixels, source, across, down, columns, rows);
    pixels.Opaque(false);
}

} // namespace

void PictureGraphics::FillRect(double x, double y, double width, double height)
{
    Bitmap& pixels = target->Pixels();
    const Span columns = Covered(x, width, pixels.Width());
    const Span rows = Covered(y, height, pixels.Height());
    if (columns.begin >= columns.end || rows.begin >= rows.end)
        return;
    const Colour colour = ForeColor();
    const std::uint8_t filled[] { static_cast<std::uint8_t>(colour >> 16),
        static_cast<std::uint8_t>(colour >> 8), static_cast<std::uint8_t>(colour), 255 };
    std::uint8_t* const memory = WithPixels([&] { return pixels.Writable(); });
    for (int row = rows.begin; row < rows.end; ++row) {
        std::uint8_t* const start = memory + static_cast<std::size_t>(row) * pixels.Stride();
        for (int column = columns.begin; column < columns.end; ++column)
            std::memcpy(
                start + static_cast<std::size_t>(column) * Bitmap::kBytesPerPixel, filled, sizeof filled);
    }
}

void PictureGraphics::DrawPicture(const Ref<Picture>& picture, double x, double y, double destinationWidth,
    double destinationHeight, double sourceX, double sourceY, double sourceWidth, double sourceHeight)
{
    const Bitmap source = picture->Pixels(); // a share: the picture may be drawn into itself
    Bitmap& pixels = target->Pixels();
    const Axis across(x, destinationWidth, pixels.Width(), sourceX, sourceWidth, source.Width());
    const Axis down(y, destinationHeight, pixels.Height(), sourceY, sourceHeight, source.Height());
    if (across.IsIdentity() && down.IsIdentity() && (source.Opaque() || pixels.Blank()))
        pixels = source;
    else
        WithPixels([&] { DrawScaled(pixels, source, across, down); }, kNoMemoryToDraw);
}

} // namespace veltrane
