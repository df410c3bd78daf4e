#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "imaging/pixels/PixelBlock.h"
#include "imaging/tiff/Page.h"
#include "imaging/tiff/Rows.h"

namespace veltrane::imaging {

/// Turns decoded rows of one page into pixels of a Bitmap.
class TiffPainter {
public:
    virtual ~TiffPainter() = default;

    /// Writes row.pixels RGBA pixels.
    virtual void Paint(const TiffRow& row, std::uint8_t* rgba) = 0;

    /// Whether every pixel painted so far has alpha 255.
    [[nodiscard]] bool Opaque() const noexcept { return opaque; }

protected:
    /// Notes the alphas of `pixels` pixels.
    void NoteAlpha(const std::uint8_t* rgba, int pixels) noexcept
    {
        std::uint8_t all = 255;
        for (int i = 0; i < pixels; ++i)
            all &= rgba[4 * i + 3];
        opaque = opaque && all == 255;
    }

private:
    bool opaque = true;
};

/// The painter for a page of any colour but TiffColour::Library. The page must outlive it.
[[nodiscard]] std::unique_ptr<TiffPainter> MakePainter(const TiffPage& page);

/// The pixel of each byte of a page whose every byte is an upright pixel of its own; nothing for other pages.
[[nodiscard]] std::optional<Palette> ByteColours(const TiffPage& page);

/// The painter that takes every such page but palettes, sample by sample.
[[nodiscard]] std::unique_ptr<TiffPainter> MakeGeneralPainter(const TiffPage& page);

} // namespace veltrane::imaging
