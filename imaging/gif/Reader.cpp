#include "imaging/gif/Reader.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include <gif_lib.h>

#include "imaging/Fault.h"

namespace veltrane::imaging {

/// What the library has not read yet.
struct GifReader::Source {
    Bytes rest;
    bool ranDry = false;
    bool inRows = false;
    bool lengthNext = true; // within rows: what the next read wants
    std::int64_t rowBytesLeft = 0; // that the frame's rows may still take

    int Read(std::uint8_t* to, std::size_t wanted) noexcept
    {
        if (inRows && lengthNext)
            return ReadLength(*to);
        lengthNext = true;
        const std::size_t given = std::min(wanted, rest.size());
        ranDry = ranDry || given < wanted;
        std::copy_n(rest.begin(), given, to);
        rest = rest.subspan(given);
        return static_cast<int>(given);
    }

    // Behind the frame's head come data blocks alone, each a byte of length and that many bytes. A block
    // that the file does not hold whole is taken for what there is of it, and none left for the last, empty
    // one: so a frame whose pixels are complete ends well, and one that still wants data fails. So does one
    // that has taken more than any frame of its size can.
    int ReadLength(std::uint8_t& length) noexcept
    {
        std::size_t told = 0;
        if (rowBytesLeft <= 0) {
            told = 0;
        } else if (!rest.empty()) {
            told = rest[0];
            rest = rest.subspan(1);
        } else {
            ranDry = true;
        }
        const std::size_t held = std::min(told, rest.size());
        ranDry = ranDry || held < told;
        rowBytesLeft -= static_cast<std::int64_t>(held);
        length = static_cast<std::uint8_t>(held);
        lengthNext = held == 0;
        return 1;
    }

    static int Callback(GifFileType* gif, GifByteType* to, int wanted) noexcept
    {
        return static_cast<Source*>(gif->UserData)->Read(to, static_cast<std::size_t>(std::max(wanted, 0)));
    }
};

namespace {

std::uint32_t Pixel(std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    return std::bit_cast<std::uint32_t>(std::array<std::uint8_t, 4> { red, green, blue, 255 });
}

// A file without any palette leaves the colours to us, with black and white as the first two (GIF 89a,
// section 19, "Global Color Table"); the further ones are shades between them.
Palette GreyPalette()
{
    Palette palette;
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const auto shade = static_cast<std::uint8_t>(i);
        palette[i] = Pixel(shade, shade, shade);
    }
    palette[1] = Pixel(255, 255, 255);
    return palette;
}

Palette ColoursOf(const ColorMapObject& map)
{
    Palette palette;
    palette.fill(Pixel(0, 0, 0));
    const auto count = static_cast<std::size_t>(std::clamp(map.ColorCount, 0, 256));
    for (std::size_t i = 0; i < count; ++i)
        palette[i] = Pixel(map.Colors[i].Red, map.Colors[i].Green, map.Colors[i].Blue);
    return palette;
}

} // namespace

void GifReader::Closer::operator()(GifFileType* file) const noexcept
{
    DGifCloseFile(file, nullptr);
}

GifReader::GifReader(Bytes file) : source(std::make_unique<Source>())
{
    source->rest = file;
    int error = D_GIF_SUCCEEDED;
    gif.reset(DGifOpen(source.get(), Source::Callback, &error));
    if (!gif && error == D_GIF_ERR_NOT_ENOUGH_MEM)
        throw Fault(Fault::NoMemory);
    if (!gif)
        Fail();
    FindFrame();
}

GifReader::~GifReader() = default;

int GifReader::ScreenWidth() const noexcept
{
    return gif->SWidth;
}

int GifReader::ScreenHeight() const noexcept
{
    return gif->SHeight;
}

Palette GifReader::Colours() const
{
    const ColorMapObject* const map = gif->Image.ColorMap != nullptr ? gif->Image.ColorMap : gif->SColorMap;
    Palette palette = map != nullptr ? ColoursOf(*map) : GreyPalette();
    if (transparent >= 0)
        palette[static_cast<std::size_t>(transparent)] = 0;
    return palette;
}

void GifReader::FindFrame()
{
    for (GifRecordType type = UNDEFINED_RECORD_TYPE; type != IMAGE_DESC_RECORD_TYPE;) {
        if (DGifGetRecordType(gif.get(), &type) == GIF_ERROR) {
            if (gif->Error != D_GIF_ERR_WRONG_RECORD)
                Fail();
            type = UNDEFINED_RECORD_TYPE; // a stray byte between blocks
        } else if (type == EXTENSION_RECORD_TYPE) {
            ReadExtension();
        } else if (type == TERMINATE_RECORD_TYPE) {
            throw Fault(Fault::GifImageMissing);
        }
    }
    if (DGifGetImageDesc(gif.get()) == GIF_ERROR)
        Fail();
    const GifImageDesc& image = gif->Image;
    frame = { image.Left, image.Top, image.Width, image.Height, image.Interlace };
    source->inRows = true;
    // The longest way to tell a pixel is its own code behind a clear code, of 12 bits each. Without a bound
    // a frame of few pixels could be megabytes of clear codes, the slowest to read.
    constexpr std::int64_t kMostPerPixel = 3, kAlwaysFine = 4096;
    source->rowBytesLeft = kAlwaysFine + kMostPerPixel * frame.width * frame.height;
    const int codeSize = source->rest.data()[-1]; // the library has just read it and found it fit
    if (codeSize >= 1)
        unpacker = std::make_unique<GifLzw>(source->rest, codeSize, static_cast<std::size_t>(frame.width));
}

// A control block speaks of the next picture or plain text, whichever comes first (GIF 89a, section 23).
void GifReader::ReadExtension()
{
    int code = 0;
    GifByteType* block = nullptr; // its length, then its bytes
    if (DGifGetExtension(gif.get(), &code, &block) == GIF_ERROR)
        Fail();
    if (code == PLAINTEXT_EXT_FUNC_CODE)
        transparent = -1;
    GraphicsControlBlock control {};
    if (code == GRAPHICS_EXT_FUNC_CODE && block != nullptr
        && DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK)
        transparent = control.TransparentColor;
    while (block != nullptr) {
        if (DGifGetExtensionNext(gif.get(), &block) == GIF_ERROR)
            Fail();
    }
}

// Our own unpacker is several times faster. What is not in order is left to the library, from the first row
// on: it knows what can be made of such files.
const std::uint8_t* GifReader::ReadRow()
{
    if (unpacker) {
        if (const std::uint8_t* const row = unpacker->Next(static_cast<std::size_t>(frame.width))) {
            ++unpacked;
            return row;
        }
        TurnToLibrary();
    }
    ReadRowByLibrary();
    return line.data();
}

void GifReader::TurnToLibrary()
{
    unpacker.reset();
    for (; unpacked > 0; --unpacked)
        ReadRowByLibrary();
}

void GifReader::ReadRowByLibrary()
{
    line.resize(static_cast<std::size_t>(frame.width));
    if (DGifGetLine(gif.get(), line.data(), frame.width) == GIF_ERROR)
        Fail();
}

void GifReader::Fail() const
{
    if (gif && gif->Error == D_GIF_ERR_NOT_ENOUGH_MEM)
        throw Fault(Fault::NoMemory);
    throw Fault(source->ranDry ? Fault::GifIncomplete : Fault::GifDamaged);
}

} // namespace veltrane::imaging
