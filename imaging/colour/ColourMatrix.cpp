#include "imaging/colour/ColourMatrix.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace veltrane::imaging {

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

// Four numbers in one register; the fourth is idle. A language extension of g++ and clang, on every
// processor they know: plain loops became comparisons with branches that nobody can predict.
using Light [[gnu::vector_size(16)]] = float;
using Steps [[gnu::vector_size(16)]] = std::int32_t;

Steps StepsOf(Light light)
{
    const Light none {}, all = none + static_cast<float>(kSteps);
    light = light > none ? light : none;
    light = light < all ? light : all;
    return __builtin_convertvector(light + 0.5F, Steps);
}

// What one channel adds to the linear red, green and blue of sRGB.
class Channel {
public:
    Channel(MatrixColour::Curve curve, const MatrixColour& colour, std::size_t index)
        : curve(std::move(curve))
    {
        for (std::size_t i = 0; i < 3; ++i)
            column[i] = colour.matrix[i][index] * kSteps;
        for (std::size_t v = 0; v < products.size() && this->curve.size() == products.size(); ++v)
            products[v] = Times(this->curve[v]);
    }
    [[nodiscard]] const Light& Of(std::uint8_t sample) const { return products[sample]; }
    [[nodiscard]] Light Of(std::uint16_t sample) const { return Times(curve[sample]); }

private:
    [[nodiscard]] Light Times(float light) const { return column * light; }

    Light column {};
    MatrixColour::Curve curve;
    std::array<Light, 256> products {}; // for samples of 8 bits
};

class Matrix final : public ColourTransform {
public:
    Matrix(MatrixColour colour, Samples from)
        : channels { Channel(std::move(colour.curves[0]), colour, 0),
            Channel(std::move(colour.curves[1]), colour, 1), Channel(std::move(colour.curves[2]), colour, 2) }
        , from(from)
    {
    }

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
        for (const Sample* const end = in + 4 * pixels; in != end; in += 4, out += 4) {
            const std::uint8_t alpha = AlphaOf(in[3]);
            const Steps step = StepsOf(channels[0].Of(in[0]) + channels[1].Of(in[1]) + channels[2].Of(in[2]));
            for (int i = 0; i < 3; ++i)
                out[i] = encoded[static_cast<std::size_t>(step[i])];
            out[3] = alpha;
        }
    }

    std::array<Channel, 3> channels;
    Samples from;
};

} // namespace

std::shared_ptr<const ColourTransform> MatrixTransform(MatrixColour colour, Samples from)
{
    return std::make_shared<Matrix>(std::move(colour), from);
}

} // namespace veltrane::imaging
