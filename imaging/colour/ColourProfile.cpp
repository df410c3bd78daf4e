#include "imaging/colour/ColourProfile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include <lcms2.h>
#include <lcms2_plugin.h>

#include "imaging/bits/ByteReader.h"
#include "imaging/colour/BoundedColours.h"
#include "imaging/colour/ColourMatrix.h"

// Little CMS reports what it finds wrong through a handler that does nothing unless one is installed, and
// goes on by returning null: that is what "ignored" needs, so none is installed.

namespace veltrane::imaging {

namespace {

struct Close {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, Close>;

struct FreeCurve {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using ToneCurve = std::unique_ptr<cmsToneCurve, FreeCurve>;

struct FreeTransform {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Transform = std::unique_ptr<void, FreeTransform>;

// Inks of a press need up to some megabytes; a file that brings more brings something else.
constexpr std::size_t kLargestProfile = std::size_t { 16 } << 20;
constexpr std::size_t kTagTable = 128; // ICC.1:2010, 7.3

// The tags of multi-process elements (ICC.1:2010, 9.2.23 to 9.2.30): chains of any length whose links may
// all lie in the same bytes, so that a small file can ask for hours. The plain tags, which must be there
// too, say the same with less precision.
bool IsOfFreeLength(std::uint32_t tag)
{
    const std::uint32_t name = tag >> 8;
    return name == 0x443242 /* D2B */ || name == 0x423244 /* B2D */;
}

// A copy in which Little CMS does not find the tags of free length. Each keeps a name of its own, because
// no name may stand there twice.
std::vector<std::uint8_t> WithoutFreeLength(Bytes icc)
{
    std::vector<std::uint8_t> copy(icc.begin(), icc.end());
    if (icc.size() < kTagTable + 4)
        return copy;
    ByteReader in(icc, std::endian::big);
    in.Seek(kTagTable);
    for (std::uint32_t left = in.U32(); left > 0 && in.Remaining() >= 12; --left) {
        const std::size_t at = in.Position();
        if (IsOfFreeLength(in.U32()))
            copy[at] = 'x';
        in.Skip(8);
    }
    return copy;
}

struct Kind {
    cmsColorSpaceSignature space;
    cmsUInt32Number format;
};

Kind KindOf(Samples from)
{
    switch (from) {
    case Samples::Grey8: return { cmsSigGrayData, TYPE_GRAY_8 };
    case Samples::Rgba8: return { cmsSigRgbData, TYPE_RGBA_8 };
    case Samples::Rgba16: return { cmsSigRgbData, TYPE_RGBA_16 };
    case Samples::Cmyk8: return { cmsSigCmykData, TYPE_CMYK_8 };
    case Samples::Cmyk16: return { cmsSigCmykData, TYPE_CMYK_16 };
    }
    return { cmsSigRgbData, TYPE_RGBA_8 };
}

bool DescribesSamples(cmsHPROFILE profile, cmsColorSpaceSignature space)
{
    switch (cmsGetDeviceClass(profile)) {
    case cmsSigInputClass:
    case cmsSigDisplayClass:
    case cmsSigOutputClass:
    case cmsSigColorSpaceClass: return cmsGetColorSpace(profile) == space;
    default: return false; // links between devices, effects, named inks
    }
}

// ---- Three primaries: our own loop, six times as fast as the library's and exact for 16 bits too.

std::optional<cmsMAT3> PrimariesOf(cmsHPROFILE profile)
{
    constexpr std::array kTags { cmsSigRedColorantTag, cmsSigGreenColorantTag, cmsSigBlueColorantTag };
    cmsMAT3 columns {};
    for (std::size_t i = 0; i < kTags.size(); ++i) {
        const auto* const light = static_cast<const cmsCIEXYZ*>(cmsReadTag(profile, kTags[i]));
        if (light == nullptr)
            return std::nullopt;
        columns.v[0].n[i] = light->X;
        columns.v[1].n[i] = light->Y;
        columns.v[2].n[i] = light->Z;
    }
    return columns;
}

const cmsMAT3& LightToSrgb()
{
    static const cmsMAT3 inverse = [] {
        const Profile srgb(cmsCreate_sRGBProfileTHR(BoundedColours()));
        cmsMAT3 result {};
        auto primaries = PrimariesOf(srgb.get());
        _cmsMAT3inverse(&*primaries, &result);
        return result;
    }();
    return inverse;
}

MatrixColour::Curve Tabulate(const cmsToneCurve& curve, Samples from)
{
    const std::size_t count = from == Samples::Rgba8 ? 256 : 65'536;
    MatrixColour::Curve table(count);
    for (std::size_t i = 0; i < count; ++i) {
        const float sample = static_cast<float>(i) / static_cast<float>(count - 1);
        const float light = cmsEvalToneCurveFloat(&curve, sample);
        table[i] = light > 0 ? std::min(light, 1.0F) : 0.0F; // what is no number becomes 0
    }
    return table;
}

bool IsOfPrimaries(cmsHPROFILE profile)
{
    return cmsGetColorSpace(profile) == cmsSigRgbData && cmsGetPCS(profile) == cmsSigXYZData
        && !cmsIsTag(profile, cmsSigAToB0Tag) && !cmsIsTag(profile, cmsSigAToB1Tag);
}

// Null when a tag is missing or broken.
std::shared_ptr<const ColourTransform> ThroughPrimaries(cmsHPROFILE profile, Samples from)
{
    constexpr std::array kTags { cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag };
    const auto primaries = PrimariesOf(profile);
    if (!primaries)
        return nullptr;
    MatrixColour colour;
    cmsMAT3 matrix {};
    _cmsMAT3per(&matrix, &LightToSrgb(), &*primaries);
    for (std::size_t i = 0; i < kTags.size(); ++i) {
        const auto* const curve = static_cast<const cmsToneCurve*>(cmsReadTag(profile, kTags[i]));
        if (curve == nullptr)
            return nullptr;
        colour.curves[i] = Tabulate(*curve, from);
        for (std::size_t k = 0; k < 3; ++k)
            colour.matrix[i][k] = static_cast<float>(matrix.v[i].n[k]);
    }
    return MatrixTransform(std::move(colour), from);
}

// ---- Grey: one entry for each of its 256 samples.

class ByTable final : public ColourTransform {
public:
    using Entry = std::array<std::uint8_t, 4>;

    explicit ByTable(const std::array<Entry, 256>& table) : table(table) { }

    void Apply(const void* samples, std::uint8_t* rgba, std::size_t pixels) const override
    {
        const auto* const in = static_cast<const std::uint8_t*>(samples);
        for (std::size_t i = 0; i < pixels; ++i)
            std::memcpy(rgba + 4 * i, table[in[i]].data(), sizeof(Entry));
    }

private:
    std::array<Entry, 256> table;
};

// ---- Everything else: Little CMS.

class ByLibrary final : public ColourTransform {
public:
    ByLibrary(Transform transform, Samples from) : transform(std::move(transform)), from(from) { }

    void Apply(const void* samples, std::uint8_t* rgba, std::size_t pixels) const override
    {
        constexpr std::size_t kAtOnce = 1 << 20; // the library counts in 32 bits
        const auto* in = static_cast<const std::uint8_t*>(samples);
        const std::size_t size = from == Samples::Rgba16 || from == Samples::Cmyk16 ? 8 : 4;
        for (std::size_t count = 0; pixels > 0; pixels -= count) {
            count = std::min(pixels, kAtOnce);
            cmsDoTransform(transform.get(), in, rgba, static_cast<cmsUInt32Number>(count));
            if (from != Samples::Rgba8 && from != Samples::Rgba16)
                MakeOpaque(rgba, count);
            in += count * size;
            rgba += count * 4;
        }
    }

private:
    static void MakeOpaque(std::uint8_t* rgba, std::size_t pixels)
    {
        for (std::size_t i = 0; i < pixels; ++i)
            rgba[4 * i + 3] = 255;
    }

    Transform transform;
    Samples from;
};

// Relative colorimetric with black point compensation: what sRGB can show stays exact, paper becomes
// white and the deepest black of the inks becomes black. Image editors have the same default; perceptual
// tables would change colours that need no change, and differ from maker to maker.
//
// A profile with the perceptual table alone is read through that one either way; saying so makes the
// library find its black.
cmsUInt32Number IntentFor(cmsHPROFILE profile)
{
    return cmsIsIntentSupported(profile, INTENT_RELATIVE_COLORIMETRIC, LCMS_USED_AS_INPUT)
        ? INTENT_RELATIVE_COLORIMETRIC
        : INTENT_PERCEPTUAL;
}

Transform Link(cmsHPROFILE profile, Samples from)
{
    const Profile srgb(cmsCreate_sRGBProfileTHR(BoundedColours()));
    const bool hasAlpha = from == Samples::Rgba8 || from == Samples::Rgba16;
    return Transform(
        cmsCreateTransformTHR(BoundedColours(), profile, KindOf(from).format, srgb.get(), TYPE_RGBA_8,
            IntentFor(profile), cmsFLAGS_BLACKPOINTCOMPENSATION | (hasAlpha ? cmsFLAGS_COPY_ALPHA : 0u)));
}

// In floating point: the library's path for 8 bits loses several levels in the shadows of a linear grey.
std::shared_ptr<const ColourTransform> TableOfGreys(cmsHPROFILE profile)
{
    const Profile srgb(cmsCreate_sRGBProfileTHR(BoundedColours()));
    const Transform transform(cmsCreateTransformTHR(BoundedColours(), profile, TYPE_GRAY_FLT, srgb.get(),
        TYPE_RGB_FLT, IntentFor(profile), cmsFLAGS_BLACKPOINTCOMPENSATION));
    if (!transform)
        return nullptr;
    std::array<ByTable::Entry, 256> table {};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const float grey = static_cast<float>(i) / 255.0F;
        std::array<float, 3> rgb {};
        cmsDoTransform(transform.get(), &grey, rgb.data(), 1);
        for (std::size_t k = 0; k < 3; ++k) {
            const float level = rgb[k] > 0 ? std::min(rgb[k], 1.0F) : 0.0F; // what is no number becomes 0
            table[i][k] = static_cast<std::uint8_t>(std::lround(level * 255.0F));
        }
        table[i][3] = 255;
    }
    return std::make_shared<ByTable>(table);
}

std::shared_ptr<const ColourTransform> FromOpen(cmsHPROFILE profile, Samples from)
{
    const bool rgb = from == Samples::Rgba8 || from == Samples::Rgba16;
    if (rgb && IsOfPrimaries(profile))
        return ThroughPrimaries(profile, from);
    if (from == Samples::Grey8)
        return TableOfGreys(profile);
    Transform transform = Link(profile, from);
    return transform ? std::make_shared<ByLibrary>(std::move(transform), from) : nullptr;
}

} // namespace

std::shared_ptr<const ColourTransform> ReadProfile(Bytes icc, Samples from)
{
    if (icc.size() > kLargestProfile)
        return nullptr;
    const std::vector<std::uint8_t> safe = WithoutFreeLength(icc);
    const Profile profile(
        cmsOpenProfileFromMemTHR(BoundedColours(), safe.data(), static_cast<cmsUInt32Number>(safe.size())));
    if (!profile || !DescribesSamples(profile.get(), KindOf(from).space))
        return nullptr;
    return FromOpen(profile.get(), from);
}

std::shared_ptr<const ColourTransform> PowerOverPrimaries(
    double exponent, const Primaries& primaries, Samples from)
{
    const auto xyY = [](Chromaticity c) { return cmsCIExyY { c.x, c.y, 1.0 }; };
    const cmsCIExyY white = xyY(primaries.white);
    const cmsCIExyYTRIPLE colours { xyY(primaries.red), xyY(primaries.green), xyY(primaries.blue) };
    const ToneCurve curve(cmsBuildGamma(BoundedColours(), exponent));
    const std::array<cmsToneCurve*, 3> curves { curve.get(), curve.get(), curve.get() };
    const Profile profile(
        curve ? cmsCreateRGBProfileTHR(BoundedColours(), &white, &colours, curves.data()) : nullptr);
    return profile ? ThroughPrimaries(profile.get(), from) : nullptr;
}

} // namespace veltrane::imaging
