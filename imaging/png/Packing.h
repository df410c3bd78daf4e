#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/png/Form.h"

namespace veltrane::imaging::png {

/// The samples of `width` pixels in the form, in whole bytes even where they take fewer bits. Writes up to 8
/// bytes more than that.
void PackSamples(const Form& form, const std::uint8_t* rgba, std::uint8_t* row, std::size_t width);

/// Packs a row of `width` pixels into the form. Writes up to 8 bytes more than the row has, and one for each
/// pixel where those take fewer bits.
void PackRow(const Form& form, const std::uint8_t* rgba, std::uint8_t* row, std::size_t width);

/// The same of a picture that is kept as indices, into a form that has their samples.
void PackIndices(const Form& form, const std::uint8_t* indices, std::uint8_t* row, std::size_t width);

} // namespace veltrane::imaging::png
