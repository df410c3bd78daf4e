#include "imaging/tiff/Lab.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <vector>

namespace veltrane::imaging {

namespace {

struct Lab {
    float lightness, a, b;
};

// `one` is what a step of 1 in a or b is stored as, `top` the number of the brightest.
template<class T>
Lab Read(TiffColour colour, const T* stored)
{
    constexpr bool kWide = std::is_same_v<T, std::uint16_t>;
    constexpr float kTop = kWide ? 65535.0f : 255.0f;
    constexpr float kOne = kWide ? 256.0f : 1.0f;
    const auto [l, a, b] = std::array { static_cast<float>(stored[0]), static_cast<float>(stored[1]),
        static_cast<float>(stored[2]) };
    switch (colour) {
    case TiffColour::CieLab: {
        using Signed = std::make_signed_t<T>;
        const auto signedA = static_cast<float>(static_cast<Signed>(stored[1]));
        const auto signedB = static_cast<float>(static_cast<Signed>(stored[2]));
        return { l * 100.0f / kTop, signedA / kOne, signedB / kOne };
    }
    case TiffColour::ItuLab: // a from -85 to 85, b from -75 to 125
        return { l * 100.0f / kTop, (a - 128.0f * kOne) * 170.0f / kTop, (b - 96.0f * kOne) * 200.0f / kTop };
    default: return { l * 100.0f / (255.0f * kOne), a / kOne - 128.0f, b / kOne - 128.0f };
    }
}

float Cube(float f)
{
    constexpr float kKnee = 6.0f / 29.0f;
    return f > kKnee ? f * f * f : 3.0f * kKnee * kKnee * (f - 4.0f / 29.0f);
}

// sRGB's curve (IEC 61966-2-1) from linear light, fine enough that rounding stays exact but at ties.
class Curve {
public:
    Curve() : steps(kSteps + 1)
    {
        for (std::size_t i = 0; i <= kSteps; ++i) {
            const double light = static_cast<double>(i) / kSteps;
            const double shown
                = light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
            steps[i] = static_cast<std::uint8_t>(std::lround(255.0 * shown));
        }
    }
    [[nodiscard]] std::uint8_t operator()(float light) const
    {
        const float kept = std::clamp(light, 0.0f, 1.0f);
        return steps[static_cast<std::size_t>(kept * static_cast<float>(kSteps) + 0.5f)];
    }

private:
    static constexpr std::size_t kSteps = 65'535;
    std::vector<std::uint8_t> steps;
};

} // namespace

template<class T>
void PaintLab(TiffColour colour, const T* stored, std::uint8_t* rgba)
{
    static const Curve curve;
    const Lab lab = Read(colour, stored);
    const float fy = (lab.lightness + 16.0f) / 116.0f;
    // The white point of D50, and the way from there to sRGB's primaries under D65 (Bradford).
    const float x = 0.96422f * Cube(fy + lab.a / 500.0f);
    const float y = Cube(fy);
    const float z = 0.82521f * Cube(fy - lab.b / 200.0f);
    rgba[0] = curve(3.1338561f * x - 1.6168667f * y - 0.4906146f * z);
    rgba[1] = curve(-0.9787684f * x + 1.9161415f * y + 0.0334540f * z);
    rgba[2] = curve(0.0719453f * x - 0.2289914f * y + 1.4052427f * z);
    rgba[3] = 255;
}

template void PaintLab(TiffColour, const std::uint8_t*, std::uint8_t*);
template void PaintLab(TiffColour, const std::uint16_t*, std::uint8_t*);

} // namespace veltrane::imaging
