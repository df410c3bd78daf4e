#pragma once

#include <optional>
#include <string>

#include "platform/codecs/Bitmap.h"
#include "platform/codecs/Codec.h"

namespace veltrane::tests {

/// The pixels of a PAM file under tests/data: 8-bit RGB or RGBA.
[[nodiscard]] codecs::Bitmap Pam(const std::string& name);

/// The largest difference of a channel between two pictures of one size, 256 when the sizes differ. Where
/// both are transparent, colours are not compared.
[[nodiscard]] int Difference(const codecs::Bitmap& a, const codecs::Bitmap& b);

/// The same pixels kept as indices, the last index for the pixel that is met first; none when there are more
/// than 256 of them.
[[nodiscard]] std::optional<codecs::Bitmap> KeptAsIndices(const codecs::Bitmap& picture);

/// Whether every alpha is 255.
[[nodiscard]] bool EveryAlphaIs255(const codecs::Bitmap& picture);

/// Decodes a file under tests/data with the codec that claims it, after the codec's readInfo agreed on the
/// size and its Opaque flag was seen to tell the truth. Raises what the codec raises.
[[nodiscard]] codecs::Bitmap Decoded(const std::string& name);

} // namespace veltrane::tests
