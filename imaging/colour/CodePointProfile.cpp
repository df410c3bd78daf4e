#include "imaging/colour/CodePointProfile.h"

#include <array>
#include <cmath>
#include <optional>
#include <string_view>

#include "imaging/colour/Colour.h"

namespace veltrane::imaging {

namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;

// linear = (a * v + b)^g from v = d on, c * v below: the profile's parametric curve of kind 3.
struct Curve {
    double g = 1.0, a = 1.0, b = 0.0, c = 1.0, d = 0.0;
};

std::optional<Primaries> PrimariesOf(int number)
{
    constexpr Chromaticity kD65 { 0.3127, 0.3290 }, kC { 0.310, 0.316 };
    switch (number) {
    case 1: return Primaries { kD65, { 0.640, 0.330 }, { 0.300, 0.600 }, { 0.150, 0.060 } };
    case 4: return Primaries { kC, { 0.67, 0.33 }, { 0.21, 0.71 }, { 0.14, 0.08 } };
    case 5: return Primaries { kD65, { 0.64, 0.33 }, { 0.29, 0.60 }, { 0.15, 0.06 } };
    case 6:
    case 7: return Primaries { kD65, { 0.630, 0.340 }, { 0.310, 0.595 }, { 0.155, 0.070 } };
    case 8: return Primaries { kC, { 0.681, 0.319 }, { 0.243, 0.692 }, { 0.145, 0.049 } };
    case 9: return Primaries { kD65, { 0.708, 0.292 }, { 0.170, 0.797 }, { 0.131, 0.046 } };
    case 11: return Primaries { { 0.314, 0.351 }, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } };
    case 12: return Primaries { kD65, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } };
    case 22: return Primaries { kD65, { 0.630, 0.340 }, { 0.295, 0.605 }, { 0.155, 0.077 } };
    default: return std::nullopt;
    }
}

std::optional<Curve> CurveOf(int number)
{
    switch (number) {
    case 1:
    case 6:
    case 14:
    case 15: return Curve { 1 / 0.45, 1 / 1.099, 0.099 / 1.099, 1 / 4.5, 0.081 };
    case 4: return Curve { .g = 2.2 };
    case 5: return Curve { .g = 2.8 };
    case 7: return Curve { 1 / 0.45, 1 / 1.1115, 0.1115 / 1.1115, 1 / 4.0, 0.0912 };
    case 8: return Curve {};
    case 13: return Curve { 2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045 };
    case 17: return Curve { .g = 2.6 };
    default: return std::nullopt;
    }
}

Vector Xyz(const Chromaticity& of)
{
    return { of.x / of.y, 1.0, (1.0 - of.x - of.y) / of.y };
}

Vector operator*(const Matrix& m, const Vector& v)
{
    Vector product {};
    for (std::size_t i = 0; i < 3; ++i)
        product[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
    return product;
}

Matrix Inverse(const Matrix& m)
{
    Matrix inverse {};
    const auto minor = [&](std::size_t i, std::size_t j) {
        const std::size_t i1 = (i + 1) % 3, i2 = (i + 2) % 3, j1 = (j + 1) % 3, j2 = (j + 2) % 3;
        return m[i1][j1] * m[i2][j2] - m[i1][j2] * m[i2][j1];
    };
    const double whole = m[0][0] * minor(0, 0) + m[0][1] * minor(0, 1) + m[0][2] * minor(0, 2);
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j)
            inverse[j][i] = minor(i, j) / whole;
    }
    return inverse;
}

constexpr Vector kD50 { 0.9642, 1.0, 0.8249 };

// The Bradford matrix, by which profiles adapt colours to their own white. Source: ICC.1:2022, annex E.
constexpr Matrix kCones { { { 0.8951, 0.2664, -0.1614 }, { -0.7502, 1.7135, 0.0367 },
    { 0.0389, -0.0685, 1.0296 } } };

Vector Adapted(const Vector& colour, const Vector& white)
{
    const Vector from = kCones * white, to = kCones * kD50;
    Vector cones = kCones * colour;
    for (std::size_t i = 0; i < 3; ++i)
        cones[i] *= to[i] / from[i];
    return Inverse(kCones) * cones;
}

// What full red, green and blue look like under the profile's white.
std::array<Vector, 3> Colorants(const Primaries& primaries)
{
    const std::array<Vector, 3> pure { Xyz(primaries.red), Xyz(primaries.green), Xyz(primaries.blue) };
    Matrix columns {};
    for (std::size_t i = 0; i < 3; ++i)
        columns[i] = { pure[0][i], pure[1][i], pure[2][i] };
    const Vector white = Xyz(primaries.white);
    const Vector share = Inverse(columns) * white;
    std::array<Vector, 3> colorants {};
    for (std::size_t i = 0; i < 3; ++i)
        colorants[i]
            = Adapted({ pure[i][0] * share[i], pure[i][1] * share[i], pure[i][2] * share[i] }, white);
    return colorants;
}

constexpr std::uint32_t kHeaderBytes = 128, kTags = 6, kTableBytes = 4 + kTags * 12;
constexpr std::uint32_t kColourBytes = 20, kCurveBytes = 32;
constexpr std::uint32_t kFirstColour = kHeaderBytes + kTableBytes;
constexpr std::uint32_t kCurveAt = kFirstColour + 3 * kColourBytes;
constexpr std::uint32_t kProfileBytes = kCurveAt + kCurveBytes;

// Fills the profile's fixed number of bytes.
class Writer {
public:
    void Number(std::uint32_t value)
    {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes[end++] = static_cast<std::uint8_t>(value >> shift);
    }
    void Text(std::string_view letters)
    {
        for (const char letter : letters)
            bytes[end++] = static_cast<std::uint8_t>(letter);
    }
    void Fixed(double value) { Number(static_cast<std::uint32_t>(std::lround(value * 65536))); }
    void Zeros(std::size_t count) { end += count; }
    [[nodiscard]] Bytes Written() const noexcept { return bytes; }

private:
    std::array<std::uint8_t, kProfileBytes> bytes {};
    std::size_t end = 0;
};

void WriteHeader(Writer& to)
{
    to.Number(kProfileBytes);
    to.Zeros(4);
    to.Number(0x0400'0000);
    to.Text("mntrRGB XYZ ");
    to.Zeros(12);
    to.Text("acsp");
    to.Zeros(28);
    for (const double part : kD50)
        to.Fixed(part);
    to.Zeros(48);
}

void WriteTable(Writer& to)
{
    to.Number(kTags);
    std::uint32_t at = kFirstColour;
    for (const char* const tag : { "rXYZ", "gXYZ", "bXYZ" }) {
        to.Text(tag);
        to.Number(at);
        to.Number(kColourBytes);
        at += kColourBytes;
    }
    for (const char* const tag : { "rTRC", "gTRC", "bTRC" }) {
        to.Text(tag);
        to.Number(kCurveAt);
        to.Number(kCurveBytes);
    }
}

} // namespace

bool IsSrgb(const CodePoints& points) noexcept
{
    return points.primaries == 1 && points.transfer == 13;
}

std::vector<std::uint8_t> ProfileOf(const CodePoints& points)
{
    const auto primaries = PrimariesOf(points.primaries);
    const auto curve = CurveOf(points.transfer);
    if (!primaries || !curve)
        return {};
    Writer to;
    WriteHeader(to);
    WriteTable(to);
    for (const Vector& colorant : Colorants(*primaries)) {
        to.Text("XYZ ");
        to.Zeros(4);
        for (const double part : colorant)
            to.Fixed(part);
    }
    to.Text("para");
    to.Zeros(4);
    to.Number(3U << 16);
    for (const double part : { curve->g, curve->a, curve->b, curve->c, curve->d })
        to.Fixed(part);
    return { to.Written().begin(), to.Written().end() };
}

} // namespace veltrane::imaging
