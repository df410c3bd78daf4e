#include "imaging/pict/drawing/Palettes.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace veltrane::imaging::pict {

namespace {

constexpr std::size_t kColours = 256;

constexpr std::array<Rgba, 16> kSixteen { kWhite, MakeRgba(0xFC, 0xF3, 0x05), MakeRgba(0xFF, 0x64, 0x02),
    MakeRgba(0xDD, 0x08, 0x06), MakeRgba(0xF2, 0x08, 0x84), MakeRgba(0x46, 0x00, 0xA5),
    MakeRgba(0x00, 0x00, 0xD4), MakeRgba(0x02, 0xAB, 0xEA), MakeRgba(0x1F, 0xB7, 0x14),
    MakeRgba(0x00, 0x64, 0x11), MakeRgba(0x56, 0x2C, 0x05), MakeRgba(0x90, 0x71, 0x3A),
    MakeRgba(0xC0, 0xC0, 0xC0), MakeRgba(0x80, 0x80, 0x80), MakeRgba(0x40, 0x40, 0x40), kBlack };

// A cube of 6 x 6 x 6 from white downwards, its black left out; then ramps of red, green, blue and grey
// through the steps that the cube has not; black last.
std::vector<Rgba> TwoHundredFiftySix()
{
    std::vector<Rgba> palette;
    const auto step = [](int sixth) { return static_cast<std::uint8_t>(0xFF - 0x33 * sixth); };
    for (int i = 0; i < 215; ++i)
        palette.push_back(MakeRgba(step(i / 36), step(i / 6 % 6), step(i % 6)));
    constexpr std::array<std::uint8_t, 10> kRamp { 0xEE, 0xDD, 0xBB, 0xAA, 0x88, 0x77, 0x55, 0x44, 0x22,
        0x11 };
    for (const std::uint8_t v : kRamp)
        palette.push_back(MakeRgba(v, 0, 0));
    for (const std::uint8_t v : kRamp)
        palette.push_back(MakeRgba(0, v, 0));
    for (const std::uint8_t v : kRamp)
        palette.push_back(MakeRgba(0, 0, v));
    for (const std::uint8_t v : kRamp)
        palette.push_back(MakeRgba(v, v, v));
    palette.push_back(kBlack);
    return palette;
}

} // namespace

std::vector<Rgba> GreyPalette(int depth)
{
    const int last = (1 << std::clamp(depth, 1, 8)) - 1;
    std::vector<Rgba> palette(kColours, kBlack);
    for (int i = 0; i <= last; ++i) {
        const auto grey = static_cast<std::uint8_t>(255 - i * 255 / last);
        palette[static_cast<std::size_t>(i)] = MakeRgba(grey, grey, grey);
    }
    return palette;
}

std::vector<Rgba> SystemPalette(int depth)
{
    if (depth == 8)
        return TwoHundredFiftySix();
    if (depth != 4)
        return GreyPalette(depth);
    std::vector<Rgba> palette(kColours, kBlack);
    std::ranges::copy(kSixteen, palette.begin());
    return palette;
}

} // namespace veltrane::imaging::pict
