#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging {

/// How the samples that a decoder hands to a ColourTransform lie in memory.
enum class Samples {
    Grey8, ///< 1 byte a pixel
    Rgba8, ///< 4 bytes, alpha kept; a transform may work in place
    Rgba16, ///< 4 numbers of 16 bits in the machine's byte order, alpha kept
    Cmyk8, ///< 4 bytes, 0 no ink, 255 full ink
    Cmyk16, ///< 4 numbers of 16 bits in the machine's byte order, 0 no ink
};

/// x and y of the CIE 1931 diagram.
struct Chromaticity {
    double x = 0.0;
    double y = 0.0;
};

/// White point and primaries, as PNG's cHRM chunk tells them.
struct Primaries {
    Chromaticity white, red, green, blue;
};

/// Takes samples of one colour space to straight 8-bit RGBA in sRGB, the layout of Bitmap.
class ColourTransform {
public:
    virtual ~ColourTransform() = default;

    /// The transform from an ICC profile. Null when the profile is broken or of another kind than
    /// `from` (then the pixels are taken as untagged), and when it is sRGB in effect: nothing to do.
    [[nodiscard]] static std::shared_ptr<const ColourTransform> FromProfile(Bytes icc, Samples from);

    /// linear = sample^(1/gamma), with sRGB's primaries when none are given or those given span no colours;
    /// `gamma` as PNG's gAMA tells it, 0.45455 for most. Null when that is sRGB in effect, and for a gamma
    /// that is no curve.
    /// Only for Rgba8 and Rgba16.
    [[nodiscard]] static std::shared_ptr<const ColourTransform> FromGamma(
        double gamma, const std::optional<Primaries>& primaries, Samples from);

    /// Inks without a profile. `from` is Cmyk8 or Cmyk16; never null.
    [[nodiscard]] static std::shared_ptr<const ColourTransform> FromUntaggedInks(Samples from);

    /// Converts `pixels` pixels.
    virtual void Apply(const void* from, std::uint8_t* rgba, std::size_t pixels) const = 0;
};

} // namespace veltrane::imaging
