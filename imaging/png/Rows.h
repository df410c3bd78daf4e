#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "imaging/pixels/PixelBlock.h"
#include "imaging/png/Chunks.h"
#include "imaging/png/PngColour.h"

namespace veltrane::imaging::png {

/// Turns unfiltered rows into straight 8-bit RGBA in sRGB: palette, transparent colour, depth and colour
/// space resolved.
class RowReader {
public:
    /// `chunks` must outlive the reader.
    explicit RowReader(const Chunks& chunks);

    /// Expands `pixels` samples as they lie in the file.
    void Expand(const std::uint8_t* row, std::uint8_t* rgba, std::size_t pixels);

    /// Whether samples are indices into Colours: of a palette, or greys of at most 8 bits.
    [[nodiscard]] bool HasIndices() const noexcept;

    /// The pixel of each index.
    [[nodiscard]] Palette Colours() const noexcept { return std::bit_cast<Palette>(table); }

    /// Takes `pixels` indices as they lie in the file, to one byte each. Those of a byte may lie there
    /// already.
    void TakeIndices(const std::uint8_t* row, std::uint8_t* indices, std::size_t pixels);

    /// The same as Expand for samples of 8 bits that lie there as RGBA already, alpha 255 where the file has
    /// none.
    void Finish(std::uint8_t* rgba, std::size_t pixels);

    /// Whether Finish changes colours, so that the row must not serve as a prediction any more.
    [[nodiscard]] bool FinishRecolours() const noexcept { return colours.pixels != nullptr; }

    /// Whether every pixel so far was opaque.
    [[nodiscard]] bool Opaque() const noexcept { return leastAlpha == 255; }

private:
    using Table = std::array<std::array<std::uint8_t, 4>, 256>;

    void FillGreys();
    void FillPalette();
    void ExpandIndexed(const std::uint8_t* row, std::uint8_t* rgba, std::size_t pixels);
    void ExpandGreyAlpha(const std::uint8_t* row, std::uint8_t* rgba, std::size_t pixels) const;
    void Expand16(const std::uint8_t* row, std::uint8_t* rgba, std::size_t pixels);
    void Read16(const std::uint8_t* row, std::size_t pixels);
    void Reduce16(std::uint8_t* rgba, std::size_t pixels) const;
    void NoteAlpha(const std::uint8_t* rgba, std::size_t pixels);
    [[nodiscard]] bool MayBeTransparent() const noexcept;

    const Chunks& chunks;
    Transforms colours;
    std::optional<std::array<std::uint16_t, 3>> key; ///< the transparent colour, as stored
    Table table {}; ///< a grey or an index to its pixel
    std::vector<std::uint16_t> wide; ///< a row of Rgba16
    std::vector<std::uint8_t> unpacked; ///< a row of indices
    std::uint8_t leastAlpha = 255;
};

} // namespace veltrane::imaging::png
