#include "imaging/tiff/Page.h"

#include <algorithm>
#include <span>

#include <tiffio.h>

#include "imaging/Fault.h"

namespace veltrane::imaging {

namespace {

// Photographs have few samples; hundreds, as in measurements from orbit, are no picture to look at.
constexpr unsigned kMostSamples = 64;

std::uint16_t Number(TIFF* file, std::uint32_t tag, std::uint16_t missing)
{
    std::uint16_t value = missing;
    return TIFFGetFieldDefaulted(file, tag, &value) != 0 ? value : missing;
}

std::uint32_t Side(TIFF* file, std::uint32_t tag)
{
    std::uint32_t value = 0;
    return TIFFGetField(file, tag, &value) != 0 ? value : 0;
}

std::span<const std::uint16_t> ExtraSamples(TIFF* file)
{
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    if (TIFFGetFieldDefaulted(file, TIFFTAG_EXTRASAMPLES, &count, &kinds) == 0 || kinds == nullptr)
        return {};
    return { kinds, count };
}

// A page that does not say what its samples mean is taken by their number. The library takes it for grey
// and makes up extra samples to fit; only those that the file tells count.
unsigned Photometric(const TiffFile& opened, const TiffPage& page)
{
    TIFF* const file = opened.Handle();
    std::uint16_t value = 0;
    if (TIFFGetField(file, TIFFTAG_PHOTOMETRIC, &value) != 0)
        return value;
    const std::size_t extra = opened.TellsExtraSamples() ? ExtraSamples(file).size() : 0;
    if (page.samples - std::min<std::size_t>(extra, page.samples) >= 3)
        return PHOTOMETRIC_RGB;
    const bool fax = page.compression >= COMPRESSION_CCITTRLE && page.compression <= COMPRESSION_CCITTFAX4;
    return fax ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
}

// JPEG turns its YCbCr into RGB by itself when asked; in separate planes it cannot.
TiffColour YCbCr(TIFF* file, const TiffPage& page)
{
    if (page.compression != COMPRESSION_JPEG || page.planar)
        return TiffColour::Library;
    TIFFSetField(file, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    return TiffColour::Rgb;
}

TiffColour ColourOf(TIFF* file, unsigned photometric, const TiffPage& page)
{
    if (page.compression == COMPRESSION_OJPEG)
        return TiffColour::Library;
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MASK: return TiffColour::Grey;
    case PHOTOMETRIC_RGB: return TiffColour::Rgb;
    case PHOTOMETRIC_PALETTE: return TiffColour::Palette;
    case PHOTOMETRIC_SEPARATED: return TiffColour::Inks;
    case PHOTOMETRIC_YCBCR: return YCbCr(file, page);
    case PHOTOMETRIC_CIELAB: return TiffColour::CieLab;
    case PHOTOMETRIC_ICCLAB: return TiffColour::IccLab;
    case PHOTOMETRIC_ITULAB: return TiffColour::ItuLab;
    case PHOTOMETRIC_LOGL:
    case PHOTOMETRIC_LOGLUV: return TiffColour::Library;
    default: throw Fault(Fault::TiffPhotometricNotSupported);
    }
}

unsigned ColoursOf(TiffColour colour)
{
    switch (colour) {
    case TiffColour::Grey:
    case TiffColour::Palette:
    case TiffColour::Library: return 1;
    case TiffColour::Inks: return 4;
    default: return 3;
    }
}

TiffNumbers NumbersOf(TIFF* file)
{
    switch (Number(file, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT)) {
    case SAMPLEFORMAT_UINT:
    case SAMPLEFORMAT_VOID: return TiffNumbers::Unsigned;
    case SAMPLEFORMAT_INT: return TiffNumbers::Signed;
    case SAMPLEFORMAT_IEEEFP: return TiffNumbers::Float;
    default: throw Fault(Fault::TiffSampleFormatNotSupported);
    }
}

bool IsLab(TiffColour colour)
{
    return colour == TiffColour::CieLab || colour == TiffColour::IccLab || colour == TiffColour::ItuLab;
}

bool CanRead(const TiffPage& page)
{
    if (page.samples < page.colours || page.samples > kMostSamples || page.bits > 64)
        return false;
    if (page.colour == TiffColour::Library)
        return true;
    if (IsLab(page.colour))
        return page.bits == 8 || page.bits == 16;
    if (page.colour == TiffColour::Palette)
        return page.bits >= 1 && page.bits <= 16;
    if (page.numbers == TiffNumbers::Float)
        return page.bits == 16 || page.bits == 24 || page.bits == 32 || page.bits == 64;
    return page.bits >= 1 && (page.bits <= 32 || page.bits == 64);
}

// Samples beyond the colours are alpha only where the tag says so. Without the tag, one sample too many in
// grey or RGB is the alpha of a writer that forgot it; the library then makes up the tag.
void FindAlpha(const TiffFile& file, TiffPage& page)
{
    const auto kinds = ExtraSamples(file.Handle());
    const bool forgotten = !file.TellsExtraSamples() && page.samples == page.colours + 1
        && (page.colour == TiffColour::Grey || page.colour == TiffColour::Rgb);
    for (std::size_t i = 0; i < kinds.size() && page.alpha < 0; ++i) {
        const std::size_t sample = page.samples - std::min<std::size_t>(kinds.size(), page.samples) + i;
        const bool isAlpha = kinds[i] == EXTRASAMPLE_ASSOCALPHA || kinds[i] == EXTRASAMPLE_UNASSALPHA;
        if (sample < page.colours || sample >= page.samples || !(isAlpha || forgotten))
            continue;
        page.alpha = static_cast<int>(sample);
        page.associated = kinds[i] == EXTRASAMPLE_ASSOCALPHA && !IsLab(page.colour);
    }
}

// Floats are taken like whole numbers, with 0 for black and 1 for white and no curve of their own: so do
// the programs that write them. Where the file says that they go beyond 1, its largest is white, because
// a picture of 0 to 255 cut at 1 would be a white area.
void FindRange(TIFF* file, TiffPage& page)
{
    double largest = 1.0, smallest = 0.0;
    if (page.numbers != TiffNumbers::Float || TIFFGetField(file, TIFFTAG_SMAXSAMPLEVALUE, &largest) == 0
        || !(largest > 1.0 && largest < 1e30))
        return;
    page.ceiling = largest;
    if (TIFFGetField(file, TIFFTAG_SMINSAMPLEVALUE, &smallest) != 0 && smallest > -1e30 && smallest < 0.0)
        page.floor = smallest;
}

void FindPalette(TIFF* file, TiffPage& page)
{
    std::uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
    if (page.colour != TiffColour::Palette)
        return;
    if (TIFFGetField(file, TIFFTAG_COLORMAP, &red, &green, &blue) == 0)
        throw Fault(Fault::TiffDamaged);
    page.palette = { red, green, blue };
}

void FindProfile(TIFF* file, TiffPage& page)
{
    std::uint32_t size = 0;
    void* profile = nullptr;
    if (TIFFGetField(file, TIFFTAG_ICCPROFILE, &size, &profile) != 0 && profile != nullptr)
        page.profile = { static_cast<const std::uint8_t*>(profile), size };
}

void CheckInks(TIFF* file, const TiffPage& page)
{
    if (page.colour == TiffColour::Inks && Number(file, TIFFTAG_INKSET, INKSET_CMYK) != INKSET_CMYK
        && page.samples != page.colours)
        throw Fault(Fault::TiffInkSetNotSupported);
}

} // namespace

TiffPage ReadPage(TiffFile& opened)
{
    TIFF* const file = opened.Handle();
    TiffPage page;
    page.width = Side(file, TIFFTAG_IMAGEWIDTH);
    page.height = Side(file, TIFFTAG_IMAGELENGTH);
    page.orientation = OrientationFrom(Number(file, TIFFTAG_ORIENTATION, 1));
    page.bits = Number(file, TIFFTAG_BITSPERSAMPLE, 1);
    page.samples = Number(file, TIFFTAG_SAMPLESPERPIXEL, 1);
    page.compression = Number(file, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    page.planar = page.samples > 1
        && Number(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
    page.tiled = TIFFIsTiled(file) != 0;
    if (TIFFIsCODECConfigured(static_cast<std::uint16_t>(page.compression)) == 0)
        throw Fault(Fault::TiffCompressionNotSupported);

    const unsigned photometric = Photometric(opened, page);
    page.colour = ColourOf(file, photometric, page);
    page.colours = ColoursOf(page.colour);
    page.minIsWhite = photometric == PHOTOMETRIC_MINISWHITE;
    page.numbers = IsLab(page.colour) ? TiffNumbers::Unsigned : NumbersOf(file);
    if (!CanRead(page))
        throw Fault(Fault::TiffSamplesNotSupported);
    CheckInks(file, page);
    FindAlpha(opened, page);
    FindRange(file, page);
    FindPalette(file, page);
    FindProfile(file, page);
    return page;
}

} // namespace veltrane::imaging
