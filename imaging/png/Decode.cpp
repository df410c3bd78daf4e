#include "imaging/png/Decode.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "imaging/Exif.h"
#include "imaging/Fault.h"
#include "imaging/deflate/Inflate.h"
#include "imaging/png/Chunks.h"
#include "imaging/png/Rows.h"
#include "imaging/png/Unfilter.h"

namespace veltrane::imaging::png {

namespace {

// One of the reduced pictures that an interlaced file stores: every dx-th pixel of every dy-th row.
// Source: PNG 3rd ed., 8.1.
struct Pass {
    std::size_t x, y, dx, dy;
};
constexpr std::array<Pass, 7> kAdam7 { { { 0, 0, 8, 8 }, { 4, 0, 8, 8 }, { 0, 4, 4, 8 }, { 2, 0, 4, 4 },
    { 0, 2, 2, 4 }, { 1, 0, 2, 2 }, { 0, 1, 1, 2 } } };
constexpr Pass kWhole { 0, 0, 1, 1 };

struct Size {
    std::size_t width, height;
};

Size SizeOf(const Header& header)
{
    return { static_cast<std::size_t>(header.width), static_cast<std::size_t>(header.height) };
}

Size SizeOf(const Pass& pass, const Header& header)
{
    const Size whole = SizeOf(header);
    return { (whole.width - std::min(whole.width, pass.x) + pass.dx - 1) / pass.dx,
        (whole.height - std::min(whole.height, pass.y) + pass.dy - 1) / pass.dy };
}

// Bytes of a row without its filter byte.
std::size_t RowBytes(const Header& header, std::size_t width)
{
    return (width * static_cast<std::size_t>(header.BitsPerPixel()) + 7) / 8;
}

std::size_t StoredBytes(const Header& header, const Pass& pass)
{
    const Size size = SizeOf(pass, header);
    return size.width == 0 ? 0 : size.height * (1 + RowBytes(header, size.width));
}

std::size_t StoredBytes(const Header& header)
{
    if (!header.interlaced)
        return StoredBytes(header, kWhole);
    std::size_t all = 0;
    for (const Pass& pass : kAdam7)
        all += StoredBytes(header, pass);
    return all;
}

// A pixel that is stored in at most the bytes it takes in memory lets the rows be inflated into the end of
// the picture's own block and be expanded from there towards its beginning, never reaching what is not
// read yet.
bool FitsBesidePixels(const Header& header) noexcept
{
    return !header.interlaced && header.BitsPerPixel() <= 32;
}

std::size_t PixelBytes(const Header& header)
{
    const Size size = SizeOf(header);
    return size.width * size.height * Bitmap::kBytesPerPixel;
}

// Filter bytes may make the stored rows a little larger than what is made of them.
std::size_t Excess(std::size_t stored, std::size_t made)
{
    return stored > made ? stored - made : 0;
}

std::size_t Slack(const Header& header)
{
    return FitsBesidePixels(header) ? Excess(StoredBytes(header), PixelBytes(header)) : 0;
}

// Some writers put the mark in front by which JPEG files tell such blocks.
Orientation OrientationOf(const Chunks& chunks) noexcept
{
    constexpr std::array<std::uint8_t, 6> kMark { 'E', 'x', 'i', 'f', 0, 0 };
    Bytes tiff = chunks.exif;
    if (tiff.size() >= kMark.size() && std::equal(kMark.begin(), kMark.end(), tiff.begin()))
        tiff = tiff.subspan(kMark.size());
    return ExifOrientation(tiff);
}

void CheckLimits(const Chunks& chunks, const Limits& limits)
{
    const Header& header = chunks.header;
    limits.Check(header.width, header.height);
    std::size_t working = FitsBesidePixels(header) ? Slack(header) : StoredBytes(header);
    if (chunks.dataChunks > 1)
        working += chunks.dataBytes;
    if (OrientationOf(chunks) != Orientation::TopLeft)
        working = std::max(working, PixelBytes(header));
    working += (kBandRows + 2) * (RowBytes(header, SizeOf(header).width) + 1);
    limits.Check(header.width, header.height, static_cast<std::int64_t>(working));
}

// Deflate makes of a byte at most this many: a code of one bit for 258 bytes, one of a bit for how far back
// they lie. A header that asks for more than the file can hold is found out before a row is touched.
// Source: RFC 1951, 3.2.5.
constexpr std::size_t kMostInflated = 1032;

void CheckLength(const Chunks& chunks)
{
    if (chunks.dataBytes >= StoredBytes(chunks.header) / kMostInflated)
        return;
    if (!chunks.ended)
        throw Fault(Fault::PngIncomplete);
    throw Fault(Fault::PngDataTooShort);
}

using Block = std::unique_ptr<std::uint8_t[]>;

// Fills `rows` from the file's pixel data.
void InflateInto(std::span<std::uint8_t> rows, Bytes file, const Chunks& chunks)
{
    Block joined;
    Bytes stream;
    if (chunks.dataChunks == 1) {
        ForEachData(file, [&](Bytes part) { stream = part; });
    } else {
        joined = std::make_unique_for_overwrite<std::uint8_t[]>(chunks.dataBytes);
        stream = { joined.get(), chunks.dataBytes };
        std::uint8_t* end = joined.get();
        ForEachData(file, [&](Bytes part) { end = std::copy(part.begin(), part.end(), end); });
    }
    switch (InflateRows(stream, rows)) {
    case Inflated::Whole: return;
    case Inflated::TooLittle: throw Fault(Fault::PngDataTooShort);
    case Inflated::Broken:
        if (!chunks.ended)
            throw Fault(Fault::PngIncomplete);
        throw Fault(Fault::PngDataDamaged);
    }
}

class Decoder {
public:
    explicit Decoder(const Chunks& chunks)
        : chunks(chunks)
        , header(chunks.header)
        , step(std::max<std::size_t>(1, static_cast<std::size_t>(header.BitsPerPixel()) / 8))
        , reader(chunks)
    {
    }

    /// As indices where the file has them and nobody will turn the picture.
    Bitmap Read(Bytes file)
    {
        const bool turned = OrientationOf(chunks) != Orientation::TopLeft;
        return reader.HasIndices() && !header.interlaced && !turned ? ReadIndices(file) : ReadPixels(file);
    }

private:
    Bitmap ReadPixels(Bytes file)
    {
        const std::size_t stored = StoredBytes(header), pixelBytes = PixelBytes(header);
        Bitmap picture = Bitmap::Uninitialised(
            static_cast<int>(header.width), static_cast<int>(header.height), Slack(header));
        std::uint8_t* const pixels = picture.Writable();
        Block own;
        std::uint8_t* rows = pixels + std::max(pixelBytes, stored) - stored;
        if (!FitsBesidePixels(header)) {
            own = std::make_unique_for_overwrite<std::uint8_t[]>(stored);
            rows = own.get();
        }
        InflateInto({ rows, stored }, file, chunks);
        if (header.interlaced)
            ReadPasses(rows, pixels);
        else
            ReadWhole(rows, pixels);
        picture.Opaque(reader.Opaque());
        return picture;
    }

    // An index is stored in at most the byte it takes in memory, so that the rows are inflated into the end
    // of the indices' block.
    Bitmap ReadIndices(Bytes file)
    {
        const Size size = SizeOf(header);
        const std::size_t stored = StoredBytes(header), count = size.width * size.height;
        Bitmap picture = Bitmap::Indexed(static_cast<int>(header.width), static_cast<int>(header.height),
            reader.Colours(), Excess(stored, count));
        std::uint8_t* const indices = picture.WritableIndices();
        std::uint8_t* const rows = indices + std::max(count, stored) - stored;
        InflateInto({ rows, stored }, file, chunks);
        Begin(size.width);
        for (std::size_t y = 0; y < size.height; ++y)
            ReadIndexRow(rows + y * (1 + rowBytes), indices + y * size.width, size.width, y > 0);
        picture.Opaque(reader.Opaque());
        return picture;
    }

    // Those of a byte are made where they stay, below the row that they were predicted by.
    void ReadIndexRow(const std::uint8_t* stored, std::uint8_t* indices, std::size_t width, bool below)
    {
        if (header.depth == 8) {
            CheckFilter(*stored);
            const auto filter = static_cast<Filter>(*stored);
            std::memmove(indices, stored + 1, rowBytes);
            Unfilter(filter, indices, below ? indices - width : before.data(), rowBytes, step);
            reader.TakeIndices(indices, indices, width);
            return;
        }
        UnfilterRow(stored);
        reader.TakeIndices(before.data(), indices, width);
    }

    void ReadPasses(const std::uint8_t* rows, std::uint8_t* pixels)
    {
        for (const Pass& pass : kAdam7) {
            const Size size = SizeOf(pass, header);
            if (size.width == 0)
                continue;
            Begin(size.width);
            std::vector<std::uint8_t> line(size.width * 4);
            for (std::size_t y = 0; y < size.height; ++y) {
                ReadRow(rows + y * (1 + rowBytes), line.data(), size.width);
                Scatter(line, pixels + ((pass.y + y * pass.dy) * SizeOf(header).width + pass.x) * 4, pass.dx);
            }
            rows += size.height * (1 + rowBytes);
        }
    }

    static void Scatter(const std::vector<std::uint8_t>& line, std::uint8_t* to, std::size_t apart)
    {
        for (std::size_t i = 0; i < line.size(); i += 4)
            std::memcpy(to + i * apart, line.data() + i, 4);
    }

    void ReadWhole(const std::uint8_t* rows, std::uint8_t* pixels)
    {
        const Size size = SizeOf(header);
        Begin(size.width);
        std::size_t y = 0;
        if (header.depth == 8 && header.Channels() >= 3)
            y = ReadBands(rows, pixels);
        for (; y < size.height; ++y)
            ReadRow(rows + y * (1 + rowBytes), pixels + y * size.width * 4, size.width);
    }

    // As many whole bands as there are, by the fast way of the two usual layouts; the number of rows read.
    std::size_t ReadBands(const std::uint8_t* rows, std::uint8_t* pixels)
    {
        const Size size = SizeOf(header);
        const std::size_t bandBytes = kBandRows * (1 + rowBytes), stride = size.width * 4;
        std::vector<std::uint8_t> band(bandBytes + 4), saved(stride);
        const std::uint8_t* above = saved.data();
        std::size_t y = 0;
        for (; y + kBandRows <= size.height; y += kBandRows) {
            // Out of the way: what is written may reach this band's rows, though never the next one's.
            std::memcpy(band.data(), rows + y * (1 + rowBytes), bandBytes);
            for (std::size_t k = 0; k < kBandRows; ++k)
                CheckFilter(band[k * (1 + rowBytes)]);
            std::uint8_t* const to = pixels + y * stride;
            UnfilterBand(band.data(), step, above, to, size.width);
            above = to + (kBandRows - 1) * stride;
            if (reader.FinishRecolours()) {
                std::memcpy(saved.data(), above, stride);
                above = saved.data();
            }
            for (std::size_t k = 0; k < kBandRows; ++k)
                reader.Finish(to + k * stride, size.width);
        }
        KeepAbove(above, y > 0);
        return y;
    }

    // Lets ReadRow go on below a band.
    void KeepAbove(const std::uint8_t* rgba, bool any)
    {
        for (std::size_t i = 0, pixels = SizeOf(header).width; any && i < pixels; ++i)
            std::memcpy(before.data() + i * step, rgba + i * 4, step);
    }

    void Begin(std::size_t width)
    {
        rowBytes = RowBytes(header, width);
        before.assign(rowBytes, 0);
        current.resize(rowBytes);
    }

    void ReadRow(const std::uint8_t* stored, std::uint8_t* rgba, std::size_t width)
    {
        UnfilterRow(stored);
        reader.Expand(before.data(), rgba, width);
    }

    // The row lies in `before` then, where the next one looks for it.
    void UnfilterRow(const std::uint8_t* stored)
    {
        CheckFilter(*stored);
        std::memcpy(current.data(), stored + 1, rowBytes);
        Unfilter(static_cast<Filter>(*stored), current.data(), before.data(), rowBytes, step);
        std::swap(current, before);
    }

    static void CheckFilter(std::uint8_t filter)
    {
        if (filter >= kFilters)
            throw Fault(Fault::PngFilterTypeUnknown);
    }

    const Chunks& chunks;
    const Header& header;
    std::size_t step; ///< bytes from a sample to its neighbour on the left
    RowReader reader;
    std::size_t rowBytes = 0;
    std::vector<std::uint8_t> before, current;
};

} // namespace

Bitmap Decode(Bytes file, const Limits& limits)
{
    const Chunks chunks = ReadChunks(file);
    CheckLimits(chunks, limits);
    CheckLength(chunks);
    return Upright(Decoder(chunks).Read(file), OrientationOf(chunks));
}

} // namespace veltrane::imaging::png
