#include "imaging/colour/Colour.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <list>
#include <mutex>
#include <vector>

#include "imaging/colour/ColourInks.h"
#include "imaging/colour/ColourProfile.h"

namespace veltrane::imaging {

namespace {

using Transform = std::shared_ptr<const ColourTransform>;

// ---- Is there anything to do?

// All greys, the ramps of each channel and a grid over all colours, as opaque RGBA.
const std::vector<std::uint8_t>& ProbeColours()
{
    static const std::vector<std::uint8_t> colours = [] {
        std::vector<std::uint8_t> rgba;
        const auto add = [&rgba](int r, int g, int b) {
            for (const int sample : { r, g, b, 255 })
                rgba.push_back(static_cast<std::uint8_t>(sample));
        };
        for (int i = 0; i < 256; ++i) {
            add(i, i, i);
            add(i, 0, 0);
            add(0, i, 0);
            add(0, 0, i);
        }
        constexpr int kStep = 15;
        for (int r = 0; r < 256; r += kStep)
            for (int g = 0; g < 256; g += kStep)
                for (int b = 0; b < 256; b += kStep)
                    add(r, g, b);
        return rgba;
    }();
    return colours;
}

// What `transform` makes of the probe colours, given in the layout it takes.
std::vector<std::uint8_t> Converted(const ColourTransform& transform, Samples from)
{
    const auto& colours = ProbeColours();
    std::vector<std::uint8_t> result(colours.size());
    if (from == Samples::Rgba8) {
        transform.Apply(colours.data(), result.data(), colours.size() / 4);
    } else {
        std::vector<std::uint16_t> wide(colours.size());
        std::ranges::transform(
            colours, wide.begin(), [](std::uint8_t v) { return static_cast<std::uint16_t>(v * 257); });
        transform.Apply(wide.data(), result.data(), colours.size() / 4);
    }
    return result;
}

bool LeavesGreysAlone(const ColourTransform& transform)
{
    std::vector<std::uint8_t> greys(256), result(4 * 256);
    for (std::size_t i = 0; i < greys.size(); ++i)
        greys[i] = static_cast<std::uint8_t>(i);
    transform.Apply(greys.data(), result.data(), greys.size());
    for (int i = 0; i < 4 * 256; ++i) {
        if (i % 4 != 3 && std::abs(result[static_cast<std::size_t>(i)] - i / 4) > 1)
            return false;
    }
    return true;
}

// One level is what profiles that mean sRGB differ by, because their curves are tables.
bool IsSrgbInEffect(const ColourTransform& transform, Samples from)
{
    if (from == Samples::Cmyk8 || from == Samples::Cmyk16)
        return false;
    if (from == Samples::Grey8)
        return LeavesGreysAlone(transform);
    return std::ranges::equal(
        Converted(transform, from), ProbeColours(), [](int a, int b) { return std::abs(a - b) <= 1; });
}

Transform UnlessSrgb(Transform transform, Samples from)
{
    return transform && !IsSrgbInEffect(*transform, from) ? transform : nullptr;
}

// ---- Profiles seen before: the pictures of one camera or one press all carry the same.

class Cache {
public:
    Transform Find(Bytes icc, Samples from)
    {
        const std::lock_guard lock(mutex);
        const auto known = std::ranges::find_if(
            entries, [&](const Entry& e) { return e.from == from && std::ranges::equal(e.icc, icc); });
        if (known != entries.end()) {
            entries.splice(entries.begin(), entries, known);
        } else {
            Transform made = UnlessSrgb(ReadProfile(icc, from), from);
            entries.push_front({ { icc.begin(), icc.end() }, from, std::move(made) });
            if (entries.size() > kMost)
                entries.pop_back();
        }
        return entries.front().transform;
    }

private:
    struct Entry {
        std::vector<std::uint8_t> icc;
        Samples from;
        Transform transform;
    };
    static constexpr std::size_t kMost = 6;

    std::mutex mutex;
    std::list<Entry> entries; // the one asked for last comes first
};

// ---- Gamma and primaries

constexpr Primaries kSrgb { { 0.3127, 0.3290 }, { 0.64, 0.33 }, { 0.30, 0.60 }, { 0.15, 0.06 } };

bool Near(Chromaticity a, Chromaticity b)
{
    constexpr double kSame = 0.0015; // chunks are written with four digits, sometimes with three
    return std::abs(a.x - b.x) < kSame && std::abs(a.y - b.y) < kSame;
}

bool IsSrgb(const Primaries& p)
{
    return Near(p.white, kSrgb.white) && Near(p.red, kSrgb.red) && Near(p.green, kSrgb.green)
        && Near(p.blue, kSrgb.blue);
}

bool IsSensible(Chromaticity c)
{
    return c.x >= 0 && c.x <= 1 && c.y >= 0 && c.y <= 1;
}

bool DescribesColour(const Primaries& p)
{
    const double area
        = (p.green.x - p.red.x) * (p.blue.y - p.red.y) - (p.blue.x - p.red.x) * (p.green.y - p.red.y);
    return p.white.y > 0 && IsSensible(p.white) && IsSensible(p.red) && IsSensible(p.green)
        && IsSensible(p.blue) && std::abs(area) > 1e-4;
}

} // namespace

Transform ColourTransform::FromProfile(Bytes icc, Samples from)
{
    // Small pictures without a profile ask too; larger ones than this are not worth keeping.
    constexpr std::size_t kLargestKept = std::size_t { 4 } << 20;
    if (icc.size() > kLargestKept)
        return UnlessSrgb(ReadProfile(icc, from), from);
    static Cache cache;
    return cache.Find(icc, from);
}

Transform ColourTransform::FromGamma(double gamma, const std::optional<Primaries>& primaries, Samples from)
{
    constexpr double kOfSrgb = 0.45455; // stands for sRGB's own curve: PNG 3rd ed., 11.3.2.5
    constexpr double kLeast = 0.01, kMost = 100; // beyond, every sample is black or white
    if (!(gamma >= kLeast && gamma <= kMost))
        return nullptr;
    const bool srgbPrimaries = !primaries || !DescribesColour(*primaries) || IsSrgb(*primaries);
    if (srgbPrimaries && std::abs(gamma - kOfSrgb) < 0.0005)
        return nullptr;
    return UnlessSrgb(PowerOverPrimaries(1 / gamma, srgbPrimaries ? kSrgb : *primaries, from), from);
}

Transform ColourTransform::FromUntaggedInks(Samples from)
{
    return SubtractiveInks(from);
}

} // namespace veltrane::imaging
