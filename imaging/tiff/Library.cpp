#include "imaging/tiff/Library.h"

#include <array>
#include <bit>

#include <tiffio.h>

#include "imaging/Fault.h"
#include "imaging/colour/Colour.h"

namespace veltrane::imaging {

namespace {

class Reader {
public:
    explicit Reader(TIFF* file)
    {
        std::array<char, 1024> reason {};
        constexpr int kStopOnError = 1;
        if (TIFFRGBAImageBegin(&image, file, kStopOnError, reason.data()) == 0)
            throw Fault(Fault::TiffPhotometricNotSupported);
        image.req_orientation = image.orientation; // as stored; turning upright is ours
    }
    ~Reader() { TIFFRGBAImageEnd(&image); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    [[nodiscard]] bool Read(std::uint32_t* pixels)
    {
        return TIFFRGBAImageGet(&image, pixels, image.width, image.height) != 0;
    }
    [[nodiscard]] bool HasAlpha() const noexcept { return image.alpha != 0; }

private:
    TIFFRGBAImage image {};
};

// The library multiplies colours with alpha. Gives whether every alpha is 255.
bool FreeOfAlpha(std::uint8_t* rgba, std::size_t pixels)
{
    std::uint8_t all = 255;
    for (; pixels > 0; --pixels, rgba += 4) {
        const unsigned alpha = rgba[3];
        all &= rgba[3];
        for (int k = 0; k < 3 && alpha != 0; ++k)
            rgba[k]
                = static_cast<std::uint8_t>((std::min<unsigned>(rgba[k], alpha) * 255 + alpha / 2) / alpha);
    }
    return all == 255;
}

} // namespace

Bitmap ReadByLibrary(TiffFile& file, const TiffPage& page)
{
    static_assert(std::endian::native == std::endian::little, "the library's words are RGBA only then");
    Bitmap picture = Bitmap::Uninitialised(static_cast<int>(page.width), static_cast<int>(page.height));
    std::uint8_t* const rgba = picture.Writable();
    const std::size_t pixels = picture.Stride() / 4 * static_cast<std::size_t>(picture.Height());
    Reader reader(file.Handle());
    file.CheckPixels(reader.Read(reinterpret_cast<std::uint32_t*>(rgba)));
    picture.Opaque(!reader.HasAlpha() || FreeOfAlpha(rgba, pixels));
    if (const auto transform = ColourTransform::FromProfile(page.profile, Samples::Rgba8))
        transform->Apply(rgba, rgba, pixels);
    return picture;
}

} // namespace veltrane::imaging
