#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace veltrane::imaging::jpeg::baseline {

/// Bytes that must be readable before and after the samples of a row.
constexpr std::size_t kSampleMargin = 64;

/// The nearest row of a chroma component and, where the component has half the rows, the next nearest. Where
/// it has half the columns, the first sample of both is repeated before the row and the last one after it.
struct ChromaRow {
    const std::uint8_t* near;
    const std::uint8_t* far;
};

/// Chroma subsampling: how many pixels share a chroma sample.
enum class Chroma {
    None, ///< no chroma at all: grey
    Full, ///< one
    HalfAcross, ///< two side by side
    HalfBoth, ///< two by two
};

/// Writes opaque RGBA pixels. Subsampled chroma is upsampled by a triangle filter. Exact to the last bit as
/// the library's fancy upsampling and colour conversion. Source of the colours: JFIF 1.02, "Conversion to and
/// from RGB". Needs AVX2.
void WriteRgbaRow(Chroma chroma, const std::uint8_t* luma, const std::array<ChromaRow, 2>& blueAndRed,
    std::uint8_t* rgba, std::size_t pixels);

} // namespace veltrane::imaging::jpeg::baseline
