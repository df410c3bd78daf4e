#include <algorithm>
#include <limits>
#include <type_traits>
#include <vector>

#include "imaging/colour/Colour.h"
#include "imaging/tiff/Lab.h"
#include "imaging/tiff/Painter.h"
#include "imaging/tiff/Samples.h"

namespace veltrane::imaging {

namespace {

using Transform = std::shared_ptr<const ColourTransform>;

std::uint8_t Narrow(std::uint8_t number)
{
    return number;
}

std::uint8_t Narrow(std::uint16_t number)
{
    return static_cast<std::uint8_t>((number * 255u + 32'895) >> 16);
}

// The layout in which a transform takes such a page's colours at T's depth.
template<class T>
Samples LayoutFor(TiffColour colour)
{
    constexpr bool kWide = std::is_same_v<T, std::uint16_t>;
    switch (colour) {
    case TiffColour::Grey: return Samples::Grey8;
    case TiffColour::Inks: return kWide ? Samples::Cmyk16 : Samples::Cmyk8;
    default: return kWide ? Samples::Rgba16 : Samples::Rgba8;
    }
}

template<class T>
Transform TransformFor(const TiffPage& page)
{
    if (page.colour != TiffColour::Grey && page.colour != TiffColour::Rgb && page.colour != TiffColour::Inks)
        return nullptr; // L*a*b* needs no profile
    const Samples layout = LayoutFor<T>(page.colour);
    Transform transform = ColourTransform::FromProfile(page.profile, layout);
    if (!transform && page.colour == TiffColour::Inks)
        transform = ColourTransform::FromUntaggedInks(layout);
    return transform;
}

// Whatever comes, in three steps: the wanted samples side by side at T's depth, then freed of alpha and
// turned so that the largest is the lightest, then to colours.
template<class T>
class GeneralPainter final : public TiffPainter {
public:
    explicit GeneralPainter(const TiffPage& page)
        : page(page), wanted(WantedSamples(page)), transform(TransformFor<T>(page))
    {
    }

    void Paint(const TiffRow& row, std::uint8_t* rgba) override
    {
        pixels = static_cast<std::size_t>(row.pixels);
        Gather(row);
        if (page.associated)
            FreeOfAlpha();
        if (page.minIsWhite)
            Invert();
        PaintColours(rgba);
        if (page.alpha >= 0) {
            for (std::size_t i = 0; i < pixels; ++i)
                rgba[4 * i + 3] = Narrow(At(i)[page.colours]);
            NoteAlpha(rgba, row.pixels);
        }
    }

private:
    static constexpr std::uint32_t kTop = std::numeric_limits<T>::max();

    [[nodiscard]] T* At(std::size_t pixel) noexcept { return samples.data() + pixel * wanted.size(); }

    void Gather(const TiffRow& row)
    {
        samples.resize(pixels * wanted.size());
        if (page.planar) {
            for (std::size_t i = 0; i < wanted.size(); ++i)
                Unpack(page, row.planes[i], pixels, samples.data() + i, wanted.size());
        } else if (wanted.size() == page.samples) {
            Unpack(page, row.planes[0], pixels * page.samples, samples.data(), 1);
        } else {
            stored.resize(pixels * page.samples);
            Unpack(page, row.planes[0], stored.size(), stored.data(), 1);
            for (std::size_t i = 0; i < pixels; ++i) {
                for (std::size_t k = 0; k < wanted.size(); ++k)
                    At(i)[k] = stored[i * page.samples + wanted[k]];
            }
        }
    }

    void FreeOfAlpha()
    {
        for (std::size_t i = 0; i < pixels; ++i) {
            T* const pixel = At(i);
            const std::uint32_t alpha = pixel[page.colours];
            for (unsigned k = 0; k < page.colours && alpha != 0; ++k) {
                const std::uint32_t colour = std::min<std::uint32_t>(pixel[k], alpha);
                pixel[k] = static_cast<T>((colour * kTop + alpha / 2) / alpha);
            }
        }
    }

    void Invert()
    {
        for (std::size_t i = 0; i < pixels; ++i)
            At(i)[0] = static_cast<T>(kTop - At(i)[0]);
    }

    void PaintColours(std::uint8_t* rgba)
    {
        switch (page.colour) {
        case TiffColour::Grey: return PaintGrey(rgba);
        case TiffColour::Rgb: return PaintRgb(rgba);
        case TiffColour::Inks: return PaintInks(rgba);
        default:
            for (std::size_t i = 0; i < pixels; ++i)
                PaintLab(page.colour, At(i), rgba + 4 * i);
        }
    }

    void PaintGrey(std::uint8_t* rgba)
    {
        shades.resize(pixels);
        for (std::size_t i = 0; i < pixels; ++i)
            shades[i] = Narrow(At(i)[0]);
        if (transform)
            return transform->Apply(shades.data(), rgba, pixels);
        for (std::size_t i = 0; i < pixels; ++i, rgba += 4) {
            rgba[0] = rgba[1] = rgba[2] = shades[i];
            rgba[3] = 255;
        }
    }

    void PaintRgb(std::uint8_t* rgba)
    {
        if (transform && std::is_same_v<T, std::uint16_t>)
            return PaintInks(rgba);
        for (std::size_t i = 0; i < pixels; ++i) {
            for (std::size_t k = 0; k < 3; ++k)
                rgba[4 * i + k] = Narrow(At(i)[k]);
            rgba[4 * i + 3] = 255;
        }
        if (transform)
            transform->Apply(rgba, rgba, pixels);
    }

    // Four samples a pixel for the transform: inks, or wide colours with an alpha that does not matter yet.
    void PaintInks(std::uint8_t* rgba)
    {
        four.assign(4 * pixels, static_cast<T>(kTop));
        for (std::size_t i = 0; i < pixels; ++i)
            std::copy_n(At(i), page.colours, four.data() + 4 * i);
        transform->Apply(four.data(), rgba, pixels);
    }

    const TiffPage& page;
    std::vector<std::uint16_t> wanted;
    Transform transform;
    std::size_t pixels = 0;
    std::vector<T> stored, samples, four;
    std::vector<std::uint8_t> shades;
};

// Eight bits are enough where samples are only rounded to them; what is calculated with keeps its depth.
bool NeedsDepth(const TiffPage& page)
{
    if (page.bits <= 8)
        return false;
    return page.associated || !(page.colour == TiffColour::Grey || page.colour == TiffColour::Rgb)
        || (page.colour == TiffColour::Rgb && !page.profile.empty());
}

} // namespace

std::unique_ptr<TiffPainter> MakeGeneralPainter(const TiffPage& page)
{
    if (NeedsDepth(page))
        return std::make_unique<GeneralPainter<std::uint16_t>>(page);
    return std::make_unique<GeneralPainter<std::uint8_t>>(page);
}

} // namespace veltrane::imaging
