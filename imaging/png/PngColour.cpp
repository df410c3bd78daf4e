#include "imaging/png/PngColour.h"

#include <algorithm>
#include <utility>

#include "imaging/colour/CodePointProfile.h"
#include "imaging/colour/ColourProfile.h"
#include "imaging/deflate/Inflate.h"

namespace veltrane::imaging::png {

namespace {

// Larger than any profile in use; a bomb ends here.
constexpr std::size_t kMostProfile = std::size_t { 8 } << 20;

// The profile behind its name and its method, of which there is one. Source: PNG 3rd ed., 11.3.2.3.
std::vector<std::uint8_t> EmbeddedProfile(Bytes chunk)
{
    const auto end = std::find(chunk.begin(), chunk.end(), std::uint8_t { 0 });
    const std::size_t name = static_cast<std::size_t>(end - chunk.begin());
    if (chunk.size() < name + 2 || chunk[name + 1] != 0)
        return {};
    return InflateSmall(chunk.subspan(name + 2), kMostProfile);
}

bool IsGrey(ColourType colour) noexcept
{
    return colour == ColourType::Grey || colour == ColourType::GreyAlpha;
}

} // namespace

Transforms ColoursOf(const Chunks& chunks, Samples pixels)
{
    if (chunks.codePoints) {
        if (IsSrgb(*chunks.codePoints))
            return {};
        if (const auto profile = ProfileOf(*chunks.codePoints); !profile.empty())
            return { ColourTransform::FromProfile(profile, pixels), nullptr };
    }
    const bool grey = IsGrey(chunks.header.colour);
    if (const auto profile = EmbeddedProfile(chunks.profile); !profile.empty()) {
        const Samples samples = grey ? Samples::Grey8 : pixels;
        auto transform = ColourTransform::FromProfile(profile, samples);
        // None at all is for sRGB, or for what is no such profile: that one leaves gAMA in force.
        if (transform || !chunks.gamma || ReadProfile(profile, samples))
            return grey ? Transforms { nullptr, std::move(transform) }
                        : Transforms { std::move(transform), nullptr };
    }
    // Primaries without a curve describe no colour: the file is taken as untagged.
    if (chunks.srgb || !chunks.gamma)
        return {};
    return { ColourTransform::FromGamma(*chunks.gamma, chunks.primaries, pixels), nullptr };
}

} // namespace veltrane::imaging::png
