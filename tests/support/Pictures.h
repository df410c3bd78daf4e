#pragma once

#include <optional>
#include <string>

#include "imaging/Codec.h"
#include "imaging/pixels/Bitmap.h"
#include "platform/pictures/Faults.h"

namespace veltrane::tests {

/// The pixels of a PAM file under tests/data: 8-bit RGB or RGBA.
[[nodiscard]] imaging::Bitmap Pam(const std::string& name);

/// The largest difference of a channel between two pictures of one size, 256 when the sizes differ. Where
/// both are transparent, colours are not compared.
[[nodiscard]] int Difference(const imaging::Bitmap& a, const imaging::Bitmap& b);

/// The same pixels kept as indices, the last index for the pixel that is met first; none when there are more
/// than 256 of them.
[[nodiscard]] std::optional<imaging::Bitmap> KeptAsIndices(const imaging::Bitmap& picture);

/// Whether every alpha is 255.
[[nodiscard]] bool EveryAlphaIs255(const imaging::Bitmap& picture);

/// Decodes a file under tests/data with the codec that claims it, and checks the picture's Opaque flag.
/// Raises what the codec raises.
[[nodiscard]] imaging::Bitmap Decoded(const std::string& name);

/// The code of the Fault that ends `attempt`; none when it comes to its end.
template<class Attempt>
[[nodiscard]] std::optional<imaging::Fault::Code> FaultOf(const Attempt& attempt)
{
    try {
        attempt();
    } catch (const imaging::Fault& fault) {
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
