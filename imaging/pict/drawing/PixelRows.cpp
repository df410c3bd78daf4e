#include "imaging/pict/drawing/PixelRows.h"

#include <cstddef>

#include "imaging/Fault.h"
#include "imaging/pict/drawing/PackBits.h"

namespace veltrane::imaging::pict {

namespace {

constexpr int kLeastPacked = 8; ///< rows of fewer bytes are stored as they are
constexpr int kLargestByteCount = 250; ///< rows of more bytes have a packed length of two bytes

void FromNumbers(Bytes row, const PixelMap& map, std::span<Rgba> pixels)
{
    const int depth = map.pixelSize;
    const unsigned mask = (1U << depth) - 1;
    int shift = 8;
    std::size_t at = 0;
    for (Rgba& pixel : pixels) {
        shift -= depth;
        pixel = map.palette[static_cast<unsigned>(row[at]) >> shift & mask];
        if (shift == 0) {
            shift = 8;
            ++at;
        }
    }
}

void FromWords(Bytes row, std::span<Rgba> pixels)
{
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = FromFiveBits(static_cast<std::uint16_t>(row[2 * i] << 8 | row[2 * i + 1]));
}

// Red, green and blue side by side, `step` bytes a pixel, the first at `first`.
void FromInterleaved(Bytes row, std::size_t first, std::size_t step, std::span<Rgba> pixels)
{
    const std::uint8_t* at = row.data() + first;
    for (Rgba& pixel : pixels) {
        pixel = MakeRgba(at[0], at[1], at[2]);
        at += step;
    }
}

} // namespace

PixelRows::PixelRows(const PixelMap& map, Packing packing, ByteReader& in, Budget& budget)
    : map(map)
    , in(in)
    , budget(budget)
    , form(FormOf(map, packing))
    , row(static_cast<std::size_t>(map.rowBytes) + 1)
{
}

PixelRows::Form PixelRows::FormOf(const PixelMap& map, Packing packing)
{
    if (packing == Packing::Raw || map.rowBytes < kLeastPacked)
        return Form::Raw;
    if (map.pixelSize <= 8)
        return Form::Bytes;
    if (map.packType == 1)
        return Form::Raw;
    if (map.pixelSize == 16 && (map.packType == 0 || map.packType == 3))
        return Form::Words;
    if (map.pixelSize == 32 && (map.packType == 0 || map.packType == 4))
        return Form::Planes;
    if (map.pixelSize == 32 && map.packType == 2)
        return Form::Triples;
    throw Fault(Fault::PictPackTypeUnknown);
}

// The bytes of one row as they lie in the file.
Bytes PixelRows::Stored()
{
    budget.Charge(8);
    const auto rowBytes = static_cast<std::size_t>(map.rowBytes);
    if (form == Form::Raw)
        return in.Take(rowBytes);
    if (form == Form::Triples)
        return in.Take(rowBytes / 4 * 3);
    return in.Take(map.rowBytes > kLargestByteCount ? in.U16() : in.U8());
}

// One row as it was before packing; at least `needed` bytes, those that pixels are made of.
Bytes PixelRows::Unpacked(std::size_t needed)
{
    const Bytes stored = Stored();
    if (form == Form::Raw)
        return stored;
    const std::size_t made = UnpackBits(stored, form == Form::Words ? 2 : 1, row);
    if (made < needed)
        throw Fault(Fault::PictPixelDataDamaged);
    budget.Charge(static_cast<std::int64_t>(made));
    return Bytes(row).first(made);
}

// Each component's bytes stand together; of four the first is not a colour. How far one component lies
// from the next shows in the row's length: writers count the width, or the row bytes where those are more.
void PixelRows::Planes(std::span<Rgba> pixels)
{
    const auto components = static_cast<std::size_t>(map.components);
    const Bytes bytes = Unpacked(pixels.size() * components);
    const std::size_t padded = static_cast<std::size_t>(map.rowBytes) / 4;
    const std::size_t plane = bytes.size() >= padded * components ? padded : pixels.size();
    const std::uint8_t* const red = bytes.data() + (components - 3) * plane;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = MakeRgba(red[i], red[i + plane], red[i + 2 * plane]);
}

void PixelRows::Next(std::span<Rgba> pixels)
{
    const std::size_t bits = pixels.size() * static_cast<std::size_t>(map.pixelSize);
    if (form == Form::Planes)
        Planes(pixels);
    else if (form == Form::Triples)
        FromInterleaved(Stored(), 0, 3, pixels);
    else if (map.pixelSize == 32)
        FromInterleaved(Stored(), 1, 4, pixels);
    else if (map.pixelSize == 16)
        FromWords(Unpacked(bits / 8), pixels);
    else
        FromNumbers(Unpacked((bits + 7) / 8), map, pixels);
}

} // namespace veltrane::imaging::pict
