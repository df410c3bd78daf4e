#include "imaging/colour/ColourInks.h"

#include <limits>

namespace veltrane::imaging {

namespace {

// Without a profile nobody knows the press. Browsers and most free tools multiply, so the people who made
// such a picture have most likely seen it so; it keeps paper white and pure black black.
template<class Sample>
class Inks final : public ColourTransform {
public:
    void Apply(const void* from, std::uint8_t* rgba, std::size_t pixels) const override
    {
        constexpr std::uint64_t kFull = std::numeric_limits<Sample>::max();
        const auto* ink = static_cast<const Sample*>(from);
        for (const Sample* const end = ink + 4 * pixels; ink != end; ink += 4, rgba += 4) {
            for (int i = 0; i < 3; ++i) {
                const std::uint64_t light = (kFull - ink[i]) * (kFull - ink[3]);
                rgba[i] = static_cast<std::uint8_t>((light * 255 + kFull * kFull / 2) / (kFull * kFull));
            }
            rgba[3] = 255;
        }
    }
};

} // namespace

std::shared_ptr<const ColourTransform> SubtractiveInks(Samples from)
{
    if (from == Samples::Cmyk8)
        return std::make_shared<Inks<std::uint8_t>>();
    return std::make_shared<Inks<std::uint16_t>>();
}

} // namespace veltrane::imaging
