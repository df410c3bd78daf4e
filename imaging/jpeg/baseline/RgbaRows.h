#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace veltrane::imaging::jpeg::baseline {

/// Bytes that have to be readable before and behind the samples of a row.
constexpr std::size_t kSampleMargin = 64;

/// A row of a chroma plane and, where the plane has half the rows, the one that is the next nearest. At half
/// the columns, both have their first and last sample once more before and behind them.
struct ChromaRow {
    const std::uint8_t* near;
    const std::uint8_t* far;
};

/// How many pixels share a chroma sample.
enum class Chroma {
    None, ///< no chroma at all: grey
    Full, ///< one
    HalfAcross, ///< two side by side
    HalfBoth, ///< two by two
};

/// Writes opaque RGBA pixels. Chroma that is shared is spread out by a triangle filter. Exact to the last
/// bit as the library's fancy upsampling and colour conversion. Source of the colours: JFIF 1.02, "Conversion
/// to and from RGB". For processors that have AVX2.
void WriteRgbaRow(Chroma chroma, const std::uint8_t* luma, const std::array<ChromaRow, 2>& blueAndRed,
    std::uint8_t* rgba, std::size_t pixels);

} // namespace veltrane::imaging::jpeg::baseline
