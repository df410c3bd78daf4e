#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/pict/stills/Still.h"

namespace veltrane::imaging::pict {

/// The pixels that a decoder fills in: black at first, since a still may leave out blocks that have not
/// changed since a frame that never was.
class StillPixels {
public:
    StillPixels(int width, int height);

    [[nodiscard]] int Width() const noexcept { return bitmap.Width(); }
    [[nodiscard]] int Height() const noexcept { return bitmap.Height(); }

    /// Sets a pixel; places outside are passed over, since blocks reach beyond the edges.
    void Set(int x, int y, Rgba colour) noexcept
    {
        if (x < bitmap.Width() && y < bitmap.Height())
            rows[static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap.Width())
                + static_cast<std::size_t>(x)]
                = colour;
    }
    [[nodiscard]] Rgba* Row(int y) noexcept
    {
        return rows + static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap.Width());
    }
    [[nodiscard]] Bitmap Finish() { return std::move(bitmap); }

private:
    Bitmap bitmap;
    Rgba* rows;
};

/// Each fills `pixels` from the still's data and raises Fault when a pixel is missing.

/// No compression: rows of whole words. Source: QuickTime File Format, "Uncompressed RGB".
void DecodeRaw(const Still& still, StillPixels& pixels);

/// "Cinepak": blocks of 4 x 4 from two code books of 256 vectors.
void DecodeCinepak(const Still& still, StillPixels& pixels);

/// "Video": blocks of 4 x 4 in one, four or sixteen colours.
void DecodeRoadPizza(const Still& still, StillPixels& pixels);

/// "Animation": rows of repeated or copied pixels.
void DecodeAnimation(const Still& still, StillPixels& pixels);

/// "Graphics": blocks of 4 x 4 in one to sixteen numbers of a palette.
void DecodeGraphics(const Still& still, StillPixels& pixels);

/// "Planar RGB": a component after the other, rows packed.
void DecodePlanar(const Still& still, StillPixels& pixels);

/// A BMP file, for the program that has no codec for them. Uncompressed ones only.
[[nodiscard]] bool LooksLikeBmp(Bytes data) noexcept;
[[nodiscard]] Bitmap DecodeBmp(Bytes data, const Limits& limits);

} // namespace veltrane::imaging::pict
