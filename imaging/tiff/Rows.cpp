#include "imaging/tiff/Rows.h"

#include <algorithm>
#include <memory>

#include <tiffio.h>

#include "imaging/Fault.h"
#include "imaging/lzw/TiffLzw.h"
#include "imaging/pixels/PixelBlock.h"
#include "imaging/tiff/Jbig.h"

namespace veltrane::imaging {

namespace {

// Where pixels lie: strips are tiles as wide as the page.
struct Grid {
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    std::uint64_t rowBytes = 0; // of one plane

    [[nodiscard]] std::uint64_t Bytes() const noexcept { return rowBytes * height; }
};

std::uint32_t Number(TIFF* file, std::uint32_t tag)
{
    std::uint32_t value = 0;
    return TIFFGetFieldDefaulted(file, tag, &value) != 0 ? value : 0;
}

Grid GridOf(TIFF* file, const TiffPage& page)
{
    Grid grid { static_cast<std::uint64_t>(page.width), Number(file, TIFFTAG_ROWSPERSTRIP), 0 };
    if (page.tiled)
        grid = { Number(file, TIFFTAG_TILEWIDTH), Number(file, TIFFTAG_TILELENGTH), 0 };
    else
        grid.height = std::min(grid.height, static_cast<std::uint64_t>(page.height));
    if (grid.width == 0 || grid.height == 0)
        throw Fault(Fault::TiffDamaged);
    grid.rowBytes = (grid.width * page.bits * (page.planar ? 1 : page.samples) + 7) / 8;
    return grid;
}

bool IsFax(const TiffPage& page)
{
    return page.compression >= COMPRESSION_CCITTRLE && page.compression <= COMPRESSION_CCITTFAX4;
}

std::uint16_t FillOrder(TIFF* file)
{
    std::uint16_t order = FILLORDER_MSB2LSB;
    return TIFFGetFieldDefaulted(file, TIFFTAG_FILLORDER, &order) != 0 ? order : FILLORDER_MSB2LSB;
}

// Plain samples that need no turning of bytes or bits can be used where they lie in the file.
bool LiesPlain(TIFF* file, const TiffPage& page)
{
    const bool wide = page.bits > 8 && page.bits % 8 == 0;
    return page.compression == COMPRESSION_NONE && FillOrder(file) == FILLORDER_MSB2LSB
        && !(wide && TIFFIsByteSwapped(file) != 0);
}

std::uint16_t Predictor(TIFF* file)
{
    std::uint16_t predictor = PREDICTOR_NONE;
    return TIFFGetFieldDefaulted(file, TIFFTAG_PREDICTOR, &predictor) != 0 ? predictor : PREDICTOR_NONE;
}

// Whether strips and tiles are of LZW data that TiffLzw can be tried on.
bool MayUnpackLzw(TIFF* file, const TiffPage& page)
{
    return page.compression == COMPRESSION_LZW && page.bits == 8 && FillOrder(file) == FILLORDER_MSB2LSB
        && Predictor(file) <= PREDICTOR_HORIZONTAL;
}

// Whether strips are decoded a row at a time rather than whole: large ones, so that no second full-size
// buffer is needed, but not those of Deflate, whose checksum stands at their end and which the library
// inflates twice as fast in one go, nor JBIG, which knows no rows; and fax ones, whose decoder passes over
// missing rows otherwise.
bool GoesByRows(const TiffPage& page, const Grid& grid)
{
    constexpr std::uint64_t kLarge = 4u << 20;
    constexpr std::uint64_t kLargeForDeflate = 256u << 20;
    const bool deflate
        = page.compression == COMPRESSION_DEFLATE || page.compression == COMPRESSION_ADOBE_DEFLATE;
    return !page.tiled && !page.planar && page.compression != COMPRESSION_JBIG
        && (IsFax(page) || grid.Bytes() > (deflate ? kLargeForDeflate : kLarge));
}

// One page's pixels on their way out.
class RowReader {
public:
    RowReader(TiffFile& file, const TiffPage& page, const std::function<void(const TiffRow&)>& take)
        : file(file)
        , tiff(file.Handle())
        , page(page)
        , take(take)
        , grid(GridOf(tiff, page))
        , wanted(page.planar ? WantedSamples(page) : std::vector<std::uint16_t> { 0 })
        , planes(wanted.size())
        , plain(LiesPlain(tiff, page))
        , byRows(!plain && GoesByRows(page, grid))
        , lzw(!byRows && MayUnpackLzw(tiff, page) ? std::make_unique<TiffLzw>() : nullptr)
    {
        // Zeros: what a decoder leaves out without a word must not be what lay in memory before.
        if (!plain)
            buffer = std::make_unique<ZeroBlock>(
                (byRows ? grid.rowBytes : grid.Bytes() * planes.size()) + TiffLzw::kSlack);
    }

    void Run()
    {
        if (byRows)
            return ReadByRows();
        for (std::int64_t y = 0; y < page.height; y += static_cast<std::int64_t>(grid.height)) {
            for (std::int64_t x = 0; x < page.width; x += static_cast<std::int64_t>(grid.width)) {
                for (std::size_t i = 0; i < planes.size(); ++i)
                    planes[i] = Piece(x, y, i);
                HandOut(x, y);
            }
        }
    }

private:
    [[nodiscard]] std::int64_t RowsAt(std::int64_t y) const
    {
        return std::min(static_cast<std::int64_t>(grid.height), page.height - y);
    }

    // A tile always holds all its rows; the last strip ends with the page.
    [[nodiscard]] std::uint64_t BytesAt(std::int64_t y) const
    {
        return page.tiled ? grid.Bytes() : grid.rowBytes * static_cast<std::uint64_t>(RowsAt(y));
    }

    // The decoded strip or tile of one plane that begins at a pixel.
    [[nodiscard]] const std::uint8_t* Piece(std::int64_t x, std::int64_t y, std::size_t plane)
    {
        const auto column = static_cast<std::uint32_t>(x), row = static_cast<std::uint32_t>(y);
        const std::uint32_t index = page.tiled ? TIFFComputeTile(tiff, column, row, 0, wanted[plane])
                                               : TIFFComputeStrip(tiff, row, wanted[plane]);
        const std::uint64_t bytes = BytesAt(y);
        if (plain)
            return PlainPiece(index, bytes);
        if (page.compression == COMPRESSION_JBIG)
            CheckJbig(index, y);
        std::uint8_t* const to = buffer->Data() + grid.Bytes() * plane;
        if (lzw && UnpackLzw(index, { to, bytes }))
            return to;
        const auto size = static_cast<tmsize_t>(bytes);
        const tmsize_t got = page.tiled ? TIFFReadEncodedTile(tiff, index, to, size)
                                        : TIFFReadEncodedStrip(tiff, index, to, size);
        file.CheckPixels(got == size);
        return to;
    }

    // False when the library has to say what is wrong with the data, or make something of it.
    [[nodiscard]] bool UnpackLzw(std::uint32_t index, std::span<std::uint8_t> to)
    {
        const std::uint64_t offset = TIFFGetStrileOffset(tiff, index),
                            size = TIFFGetStrileByteCount(tiff, index);
        const Bytes contents = file.Contents();
        if (offset > contents.size() || size > contents.size() - offset
            || !lzw->Unpack(contents.subspan(offset, size), to))
            return false;
        if (Predictor(tiff) == PREDICTOR_HORIZONTAL)
            for (std::size_t row = 0; row < to.size(); row += grid.rowBytes)
                AddDifferences(to.data() + row, grid.rowBytes, page.planar ? 1 : page.samples);
        return true;
    }

    void CheckJbig(std::uint32_t index, std::int64_t y) const
    {
        const std::uint64_t rows = page.tiled ? grid.height : static_cast<std::uint64_t>(RowsAt(y));
        const Bytes contents = file.Contents();
        const std::uint64_t offset
            = std::min<std::uint64_t>(TIFFGetStrileOffset(tiff, index), contents.size());
        // The library hands JBIG the bits the other way round than it is told they lie.
        if (!FitsJbig(contents.subspan(offset), FillOrder(tiff) == FILLORDER_MSB2LSB, grid.width, rows,
                grid.height))
            throw Fault(Fault::TiffDamaged);
    }

    [[nodiscard]] const std::uint8_t* PlainPiece(std::uint32_t index, std::uint64_t bytes) const
    {
        const std::uint64_t offset = TIFFGetStrileOffset(tiff, index);
        const std::uint64_t told = TIFFGetStrileByteCount(tiff, index);
        const Bytes contents = file.Contents();
        if (offset == 0 || told < bytes)
            throw Fault(Fault::TiffDamaged);
        if (offset > contents.size() || bytes > contents.size() - offset)
            throw Fault(Fault::TiffIncomplete);
        return contents.data() + offset;
    }

    void HandOut(std::int64_t x, std::int64_t y)
    {
        const auto pixels = static_cast<int>(std::min(static_cast<std::int64_t>(grid.width), page.width - x));
        for (std::int64_t row = 0; row < RowsAt(y); ++row) {
            take({ static_cast<int>(x), static_cast<int>(y + row), pixels, planes });
            for (const std::uint8_t*& plane : planes)
                plane += grid.rowBytes;
        }
    }

    void ReadByRows()
    {
        planes[0] = buffer->Data();
        for (std::int64_t y = 0; y < page.height; ++y) {
            const int result = TIFFReadScanline(tiff, buffer->Data(), static_cast<std::uint32_t>(y), 0);
            file.CheckPixels(result == 1);
            take({ 0, static_cast<int>(y), static_cast<int>(page.width), planes });
        }
    }

    TiffFile& file;
    TIFF* tiff;
    const TiffPage& page;
    const std::function<void(const TiffRow&)>& take;
    Grid grid;
    std::vector<std::uint16_t> wanted;
    std::vector<const std::uint8_t*> planes;
    bool plain;
    bool byRows;
    std::unique_ptr<TiffLzw> lzw; // none when the library unpacks
    std::unique_ptr<ZeroBlock> buffer; // none when samples are used where they lie in the file
};

// The library must see rows as we do before it is given a buffer for them.
void CheckRowSize(TIFF* file, const TiffPage& page, const Grid& grid)
{
    const std::uint64_t told = page.tiled ? TIFFTileRowSize64(file) : TIFFScanlineSize64(file);
    if (told != grid.rowBytes)
        throw Fault(Fault::TiffSamplesNotSupported);
}

} // namespace

std::vector<std::uint16_t> WantedSamples(const TiffPage& page)
{
    std::vector<std::uint16_t> wanted;
    for (unsigned i = 0; i < page.colours; ++i)
        wanted.push_back(static_cast<std::uint16_t>(i));
    if (page.alpha >= 0)
        wanted.push_back(static_cast<std::uint16_t>(page.alpha));
    return wanted;
}

std::int64_t WorkingBytes(const TiffFile& file, const TiffPage& page)
{
    constexpr std::uint64_t kAlwaysFine = 64u << 20;
    const Grid grid = GridOf(file.Handle(), page);
    const std::uint64_t planes = page.planar ? WantedSamples(page).size() : 1;
    const auto height = static_cast<std::uint64_t>(page.height);
    const std::uint64_t stored
        = (static_cast<std::uint64_t>(page.width) * page.bits * page.samples + 7) / 8 * height;
    if (page.compression == COMPRESSION_NONE && page.colour != TiffColour::Library
        && stored > file.Contents().size())
        throw Fault(Fault::TiffIncomplete);
    // The first test keeps the product of the second from running over.
    if (grid.width > UINT32_MAX / 8 || grid.rowBytes > INT64_MAX / grid.height / planes
        || grid.Bytes() > kAlwaysFine + stored * 4)
        throw Fault(Fault::TiffDamaged);
    if (page.colour != TiffColour::Library)
        CheckRowSize(file.Handle(), page, grid);
    const bool plain = LiesPlain(file.Handle(), page);
    const std::uint64_t buffer = GoesByRows(page, grid) ? grid.rowBytes : grid.Bytes() * planes;
    return plain ? 0 : static_cast<std::int64_t>(buffer);
}

void ReadRows(TiffFile& file, const TiffPage& page, const std::function<void(const TiffRow&)>& take)
{
    RowReader(file, page, take).Run();
}

} // namespace veltrane::imaging
