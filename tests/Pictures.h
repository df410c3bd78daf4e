#pragma once

#include <optional>
#include <string>

#include "platform/Faults.h"
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

/// Decodes a file under tests/data with the codec that claims it, and checks the picture's Opaque flag.
/// Raises what the codec raises.
[[nodiscard]] codecs::Bitmap Decoded(const std::string& name);

/// The code of the Fault that ends `attempt`; none when it comes to its end.
template<class Attempt>
[[nodiscard]] std::optional<codecs::Fault::Code> FaultOf(const Attempt& attempt)
{
    try {
        attempt();
    } catch (const codecs::Fault& fault) {
        return fault.code;
    }
    return std::nullopt;
}

/// The exception that the seam makes of the Fault that ends `attempt`: its class and message, parted by ": ".
/// Empty when `attempt` comes to its end.
template<class Attempt>
[[nodiscard]] std::string RefusalOf(const Attempt& attempt)
{
    try {
        WithPixels(attempt);
    } catch (const RuntimeException& refusal) {
        return std::string(refusal.ClassName()) + ": " + std::string(refusal.Message().Bytes());
    }
    return {};
}

} // namespace veltrane::tests
