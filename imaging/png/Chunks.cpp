#include "imaging/png/Chunks.h"

#include <algorithm>
#include <utility>

#include "imaging/Fault.h"
#include "imaging/bits/ByteReader.h"
#include "imaging/png/Checksum.h"

namespace veltrane::imaging::png {

namespace {

constexpr std::uint32_t kHeader = Type("IHDR"), kPalette = Type("PLTE"), kData = Type("IDAT"),
                        kEnd = Type("IEND");
constexpr std::uint32_t kAncillary = 0x2000'0000; // the small first letter, PNG 3rd ed., 5.4
constexpr std::uint32_t kLongest = 0x7FFF'FFFF;
constexpr std::uint32_t kHeaderBytes = 13;

struct Chunk {
    std::uint32_t type = 0;
    Bytes data;
    Bytes checked; // type and data, as the checksum covers them
    std::uint32_t checksum = 0;

    [[nodiscard]] bool Sound() const noexcept { return ChecksumOf(checked) == checksum; }
    [[nodiscard]] bool Critical() const noexcept { return (type & kAncillary) == 0; }
};

bool IsType(std::uint32_t type) noexcept
{
    for (int shift = 0; shift < 32; shift += 8) {
        const std::uint32_t letter = (type >> shift & 0xFF) | 0x20;
        if (letter < 'a' || letter > 'z')
            return false;
    }
    return true;
}

enum class Next { Chunk, CutOff, Nonsense };

// The next chunk, unless the file ends within it or what stands there is none. `chunk` has its type in
// every case.
Next ReadChunk(ByteReader& in, Chunk& chunk)
{
    chunk = {};
    if (in.Remaining() < 8)
        return Next::CutOff;
    const std::uint32_t length = in.U32();
    const std::size_t start = in.Position();
    chunk.type = in.U32();
    if (length > kLongest || !IsType(chunk.type))
        return Next::Nonsense;
    if (in.Remaining() < std::size_t { length } + 4)
        return Next::CutOff;
    in.Seek(start);
    chunk.checked = in.Take(std::size_t { length } + 4);
    chunk.data = chunk.checked.subspan(4);
    chunk.checksum = in.U32();
    return Next::Chunk;
}

bool DepthFits(ColourType colour, int depth) noexcept
{
    switch (colour) {
    case ColourType::Grey: return depth == 1 || depth == 2 || depth == 4 || depth == 8 || depth == 16;
    case ColourType::Palette: return depth == 1 || depth == 2 || depth == 4 || depth == 8;
    case ColourType::Rgb:
    case ColourType::GreyAlpha:
    case ColourType::Rgba: return depth == 8 || depth == 16;
    }
    return false;
}

Header ReadHeader(const Chunk& chunk)
{
    if (chunk.type != kHeader || chunk.data.size() != kHeaderBytes || !chunk.Sound())
        throw Fault(Fault::PngHeaderDamaged);
    ByteReader in(chunk.data, std::endian::big);
    Header header;
    header.width = in.U32();
    header.height = in.U32();
    header.depth = in.U8();
    header.colour = static_cast<ColourType>(in.U8());
    if (!DepthFits(header.colour, header.depth))
        throw Fault(Fault::PngColourTypeOrDepthUnknown);
    const int compression = in.U8(), filter = in.U8(), interlace = in.U8();
    if (compression != 0 || filter != 0 || interlace > 1)
        throw Fault(Fault::PngMethodUnknown);
    header.interlaced = interlace == 1;
    return header;
}

double Fraction(ByteReader& in)
{
    return in.U32() / 100'000.0;
}

Chromaticity ReadChromaticity(ByteReader& in)
{
    const double x = Fraction(in);
    return { x, Fraction(in) };
}

// Chunks that serve the colours count only before the pixel data, once, and when they are of their size.
void ReadColour(const Chunk& chunk, Chunks& all)
{
    ByteReader in(chunk.data, std::endian::big);
    const auto is = [&](std::uint32_t type, std::size_t size) {
        return chunk.type == type && chunk.data.size() == size;
    };
    if (is(Type("gAMA"), 4) && !all.gamma) {
        all.gamma = Fraction(in);
    } else if (is(Type("cHRM"), 32) && !all.primaries) {
        Primaries primaries;
        primaries.white = ReadChromaticity(in);
        primaries.red = ReadChromaticity(in);
        primaries.green = ReadChromaticity(in);
        primaries.blue = ReadChromaticity(in);
        all.primaries = primaries;
    } else if (is(Type("sRGB"), 1)) {
        all.srgb = true;
    } else if (is(Type("cICP"), 4) && !all.codePoints) {
        const int primaries = in.U8();
        all.codePoints = CodePoints { primaries, in.U8() };
    } else if (chunk.type == Type("iCCP") && all.profile.empty()) {
        all.profile = chunk.data;
    } else if (chunk.type == Type("tRNS") && all.transparency.empty()) {
        all.transparency = chunk.data;
    }
}

void ReadAncillary(const Chunk& chunk, Chunks& all)
{
    if (!chunk.Sound())
        return;
    if (chunk.type == Type("eXIf") && all.exif.empty())
        all.exif = chunk.data;
    else if (all.dataChunks == 0)
        ReadColour(chunk, all);
}

void ReadPalette(const Chunk& chunk, Chunks& all)
{
    if (!chunk.Sound() || chunk.data.empty() || chunk.data.size() % 3 != 0 || chunk.data.size() > 3 * 256)
        throw Fault(Fault::PngPaletteDamaged);
    if (all.palette.empty())
        all.palette = chunk.data;
}

void ReadCritical(const Chunk& chunk, Chunks& all)
{
    if (chunk.type == kData) {
        if (!chunk.Sound())
            throw Fault(Fault::PngDataChecksumWrong);
        ++all.dataChunks;
        all.dataBytes += chunk.data.size();
    } else if (chunk.type == kPalette && all.dataChunks == 0) {
        ReadPalette(chunk, all);
    } else if (!chunk.Sound()) {
        throw Fault(Fault::PngChecksumWrong);
    } else if (chunk.type == kEnd) {
        all.ended = true;
    } else if (all.dataChunks == 0) {
        throw Fault(Fault::PngChunkUnknown);
    }
}

void CheckComplete(const Chunks& all)
{
    if (all.dataChunks == 0) {
        if (all.ended)
            throw Fault(Fault::PngDataMissing);
        throw Fault(Fault::PngIncomplete);
    }
    if (all.header.colour == ColourType::Palette && all.palette.empty())
        throw Fault(Fault::PngPaletteMissing);
}

} // namespace

int Header::Channels() const noexcept
{
    switch (colour) {
    case ColourType::Grey:
    case ColourType::Palette: return 1;
    case ColourType::GreyAlpha: return 2;
    case ColourType::Rgb: return 3;
    case ColourType::Rgba: return 4;
    }
    return 4;
}

Chunks ReadChunks(Bytes file)
{
    ByteReader in(file, std::endian::big);
    in.Skip(std::min(kSignature.size(), file.size()));
    Chunks all;
    Chunk chunk;
    if (ReadChunk(in, chunk) == Next::CutOff)
        throw Fault(Fault::PngIncomplete);
    all.header = ReadHeader(chunk);
    while (!all.ended) {
        const Next next = ReadChunk(in, chunk);
        if (next == Next::Nonsense && all.dataChunks == 0)
            throw Fault(Fault::PngStructureDamaged);
        if (next == Next::CutOff && chunk.type == kData)
            throw Fault(Fault::PngIncomplete);
        if (next != Next::Chunk)
            break; // behind the pixel data; whether they are all there shows when they are read
        if (chunk.Critical())
            ReadCritical(chunk, all);
        else
            ReadAncillary(chunk, all);
    }
    CheckComplete(all);
    return all;
}

void ForEachData(Bytes file, const std::function<void(Bytes)>& take)
{
    ByteReader in(file, std::endian::big);
    in.Skip(kSignature.size());
    for (Chunk chunk; ReadChunk(in, chunk) == Next::Chunk && chunk.type != kEnd;) {
        if (chunk.type == kData)
            take(chunk.data);
    }
}

} // namespace veltrane::imaging::png
