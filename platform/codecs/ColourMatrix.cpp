#include "platform/codecs/ColourMatrix.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace veltrane::codecs {

namespace {

// sRGB rises by 3295 levels over the unit of linear light in its darkest part: at this many steps, what
// the table rounds away is a tenth of a level.
constexpr int kSteps = 16'384;
using EncodeTable = std::array<std::uint8_t, kSteps + 1>;

// IEC 61966-2-1:1999, 5.2.
double Encode(double linear)
{
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

const EncodeTable& Encoded()
{
    static const EncodeTable table = [] {
        EncodeTable built {};
        for (int i = 0; i <= kSteps; ++i)
            built[static_cast<std::size_t>(i)]
                = static_cast<std::uint8_t>(std::lround(255 * Encode(i / static_cast<double>(kSteps))));
        return built;
    }();
    return table;
}

std::uint8_t AlphaOf(std::uint8_t alpha)
{
    return alpha;
}

std::uint8_t AlphaOf(std::uint16_t alpha)
{
    return static_cast<std::uint8_t>((alpha * 255u + 32767u) / 65535u);
}

class Matrix final : public ColourTransform {
public:
    Matrix(MatrixColour colour, Samples from) : colour(std::move(colour)), from(from) { }

    void Apply(const void* samples, std::uint8_t* rgba, std::size_t pixels) const override
    {
        if (from == Samples::Rgba8)
            Run(static_cast<const std::uint8_t*>(samples), rgba, pixels);
        else
            Run(static_cast<const std::uint16_t*>(samples), rgba, pixels);
    }

private:
    template<class Sample>
    void Run(const Sample* in, std::uint8_t* out, std::size_t pixels) const
    {
        const EncodeTable& encoded = Encoded();
        const auto& m = colour.matrix;
        const float* const redCurve = colour.curves[0].data();
        const float* const greenCurve = colour.curves[1].data();
        const float* const blueCurve = colour.curves[2].data();
        for (const Sample* const end = in + 4 * pixels; in != end; in += 4, out += 4) {
            const float red = redCurve[in[0]], green = greenCurve[in[1]], blue = blueCurve[in[2]];
            const std::uint8_t alpha = AlphaOf(in[3]);
            for (std::size_t i = 0; i < 3; ++i) {
                const float light = m[i][0] * red + m[i][1] * green + m[i][2] * blue;
                const float step = std::clamp(light, 0.0F, 1.0F) * kSteps + 0.5F;
                out[i] = encoded[static_cast<std::size_t>(static_cast<int>(step))];
            }
            out[3] = alpha;
        }
    }

    MatrixColour colour;
    Samples from;
};

} // namespace

std::shared_ptr<const ColourTransform> MatrixTransform(MatrixColour colour, Samples from)
{
    return std::make_shared<Matrix>(std::move(colour), from);
}

} // namespace veltrane::codecs
