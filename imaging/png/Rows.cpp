#include "imaging/png/Rows.h"

#include <algorithm>
#include <cstring>

#include "imaging/bits/ByteReader.h"

namespace veltrane::imaging::png {

namespace {

Samples SamplesOf(const Header& header) noexcept
{
    return header.depth == 16 ? Samples::Rgba16 : Samples::Rgba8;
}

bool HasAlpha(ColourType colour) noexcept
{
    return colour == ColourType::GreyAlpha || colour == ColourType::Rgba;
}

// The one colour that tRNS makes transparent; only the bits of the file's depth count.
// Source: PNG 3rd ed., 11.3.1.1.
std::optional<std::array<std::uint16_t, 3>> KeyOf(const Chunks& chunks)
{
    const bool grey = chunks.header.colour == ColourType::Grey;
    if ((!grey && chunks.header.colour != ColourType::Rgb) || chunks.transparency.size() != (grey ? 2U : 6U))
        return std::nullopt;
    ByteReader in(chunks.transparency, std::endian::big);
    const auto mask = static_cast<std::uint16_t>((1U << chunks.header.depth) - 1);
    std::array<std::uint16_t, 3> key {};
    for (std::uint16_t& sample : std::span(key).first(grey ? 1 : 3))
        sample = in.U16() & mask;
    if (grey)
        key[1] = key[2] = key[0];
    return key;
}

// Samples of less than a byte, the leftmost in the upper bits, as bytes. Source: PNG 3rd ed., 7.2.
void Unpack(const std::uint8_t* row, std::size_t depth, std::uint8_t* samples, std::size_t count) noexcept
{
    const std::size_t inByte = 8 / depth;
    const unsigned mask = (1U << depth) - 1;
    std::size_t i = 0;
    for (; i + inByte <= count; i += inByte, ++row) {
        for (std::size_t k = 0; k < inByte; ++k)
            samples[i + k] = static_cast<std::uint8_t>(*row >> (8 - depth * (k + 1)) & mask);
    }
    for (std::size_t shift = 8; i < count; ++i) {
        shift -= depth;
        samples[i] = static_cast<std::uint8_t>(*row >> shift & mask);
    }
}

std::uint8_t To8(unsigned sample) noexcept
{
    return static_cast<std::uint8_t>((sample * 255 + 32767) / 65535);
}

} // namespace

RowReader::RowReader(const Chunks& chunks)
    : chunks(chunks), colours(ColoursOf(chunks, SamplesOf(chunks.header))), key(KeyOf(chunks))
{
    if (chunks.header.colour == ColourType::Palette)
        FillPalette();
    else if (chunks.header.Channels() <= 2)
        FillGreys();
}

void RowReader::FillGreys()
{
    const int depth = chunks.header.depth == 16 ? 8 : chunks.header.depth;
    const std::size_t count = std::size_t { 1 } << depth;
    for (std::size_t i = 0; i < count; ++i) {
        const auto grey = static_cast<std::uint8_t>(i * 255 / (count - 1));
        table[i] = { grey, grey, grey, 255 };
        if (colours.grey)
            colours.grey->Apply(&grey, table[i].data(), 1);
    }
    if (chunks.header.depth == 16)
        return; // the key and the curve work on all 16 bits
    if (colours.pixels)
        colours.pixels->Apply(table.data(), table[0].data(), count);
    if (key)
        table[(*key)[0]][3] = 0;
}

// An index behind the palette's end is black: that is what readers make of it since there are any.
void RowReader::FillPalette()
{
    const std::size_t count = chunks.palette.size() / 3;
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = { 0, 0, 0, 255 };
        if (i < count)
            std::copy_n(chunks.palette.begin() + static_cast<std::ptrdiff_t>(3 * i), 3, table[i].begin());
        if (i < std::min(count, chunks.transparency.size()))
            table[i][3] = chunks.transparency[i];
    }
    if (colours.pixels)
        colours.pixels->Apply(table.data(), table[0].data(), count);
}

void RowReader::Expand(const std::uint8_t* row, std::uint8_t* rgba, std::size_t pixels)
{
    const Header& header = chunks.header;
    if (header.depth == 16)
        return Expand16(row, rgba, pixels);
    switch (header.colour) {
    case ColourType::Grey:
    case ColourType::Palette: return ExpandIndexed(row, rgba, pixels);
    case ColourType::GreyAlpha: ExpandGreyAlpha(row, rgba, pixels); break;
    case ColourType::Rgb:
        for (std::size_t i = 0; i < pixels; ++i) {
            std::memcpy(rgba + 4 * i, row + 3 * i, 3);
            rgba[4 * i + 3] = 255;
        }
        return Finish(rgba, pixels);
    case ColourType::Rgba: std::memcpy(rgba, row, 4 * pixels); return Finish(rgba, pixels);
    }
    NoteAlpha(rgba, pixels);
}

void RowReader::Finish(std::uint8_t* rgba, std::size_t pixels)
{
    if (key) {
        for (std::size_t i = 0; i < pixels; ++i) {
            std::uint8_t* const p = rgba + 4 * i;
            if (p[0] == (*key)[0] && p[1] == (*key)[1] && p[2] == (*key)[2])
                p[3] = 0;
        }
    }
    if (colours.pixels)
        colours.pixels->Apply(rgba, rgba, pixels);
    NoteAlpha(rgba, pixels);
}

bool RowReader::HasIndices() const noexcept
{
    const Header& header = chunks.header;
    return header.depth <= 8 && (header.colour == ColourType::Grey || header.colour == ColourType::Palette);
}

void RowReader::TakeIndices(const std::uint8_t* row, std::uint8_t* indices, std::size_t pixels)
{
    if (chunks.header.depth < 8)
        Unpack(row, static_cast<std::size_t>(chunks.header.depth), indices, pixels);
    else if (row != indices)
        std::memcpy(indices, row, pixels);
    std::uint8_t least = leastAlpha;
    for (std::size_t i = 0; MayBeTransparent() && i < pixels; ++i)
        least = std::min(least, table[indices[i]][3]);
    leastAlpha = least;
}

void RowReader::ExpandIndexed(const std::uint8_t* row, std::uint8_t* rgba, std::size_t pixels)
{
    unpacked.resize(pixels);
    TakeIndices(row, unpacked.data(), pixels);
    imaging::Expand(Colours(), unpacked.data(), pixels, rgba);
}

void RowReader::ExpandGreyAlpha(const std::uint8_t* row, std::uint8_t* rgba, std::size_t pixels) const
{
    for (std::size_t i = 0; i < pixels; ++i) {
        std::memcpy(rgba + 4 * i, table[row[2 * i]].data(), 4);
        rgba[4 * i + 3] = row[2 * i + 1];
    }
}

// The row as Rgba16 in `wide`.
void RowReader::Read16(const std::uint8_t* row, std::size_t pixels)
{
    const bool grey = chunks.header.Channels() <= 2, alpha = HasAlpha(chunks.header.colour);
    const auto next = [&row] {
        const auto sample = static_cast<std::uint16_t>(row[0] << 8 | row[1]);
        row += 2;
        return sample;
    };
    wide.resize(4 * pixels);
    for (std::size_t i = 0; i < pixels; ++i) {
        std::uint16_t* const p = wide.data() + 4 * i;
        p[0] = next();
        p[1] = grey ? p[0] : next();
        p[2] = grey ? p[0] : next();
        p[3] = alpha ? next() : std::uint16_t { 65535 };
        if (key && p[0] == (*key)[0] && p[1] == (*key)[1] && p[2] == (*key)[2])
            p[3] = 0;
    }
}

void RowReader::Reduce16(std::uint8_t* rgba, std::size_t pixels) const
{
    for (std::size_t i = 0; i < 4 * pixels; ++i)
        rgba[i] = To8(wide[i]);
    if (!colours.grey)
        return;
    for (std::size_t i = 0; i < pixels; ++i)
        std::memcpy(rgba + 4 * i, table[rgba[4 * i]].data(), 3);
}

void RowReader::Expand16(const std::uint8_t* row, std::uint8_t* rgba, std::size_t pixels)
{
    Read16(row, pixels);
    if (colours.pixels)
        colours.pixels->Apply(wide.data(), rgba, pixels);
    else
        Reduce16(rgba, pixels);
    NoteAlpha(rgba, pixels);
}

bool RowReader::MayBeTransparent() const noexcept
{
    return HasAlpha(chunks.header.colour) || !chunks.transparency.empty();
}

void RowReader::NoteAlpha(const std::uint8_t* rgba, std::size_t pixels)
{
    if (!MayBeTransparent())
        return;
    std::uint8_t least = leastAlpha;
    for (std::size_t i = 0; i < pixels; ++i)
        least = std::min(least, rgba[4 * i + 3]);
    leastAlpha = least;
}

} // namespace veltrane::imaging::png
