#include "platform/codecs/png/Encode.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "platform/Exceptions.h"
#include "platform/codecs/png/Chunks.h"
#include "platform/codecs/png/DeflateStream.h"
#include "platform/codecs/png/FilterRow.h"
#include "platform/codecs/png/Form.h"

namespace veltrane::codecs::png {

namespace {

constexpr std::size_t kBandGoal = 128 * 1024; // bytes compressed at a time, filter bytes included

void WriteHeader(Sink& sink, const Bitmap& picture, const Form& form)
{
    std::array<std::uint8_t, 13> header {};
    for (int i = 0; i < 4; ++i) {
        header[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(picture.Width() >> (24 - 8 * i));
        header[static_cast<std::size_t>(i + 4)] = static_cast<std::uint8_t>(picture.Height() >> (24 - 8 * i));
    }
    header[8] = static_cast<std::uint8_t>(form.depth);
    header[9] = static_cast<std::uint8_t>(form.colour);
    WriteChunk(sink, Type("IHDR"), header);
    constexpr std::array<std::uint8_t, 1> kPerceptual { 0 };
    WriteChunk(sink, Type("sRGB"), kPerceptual);
}

// The palette's colours, and the alphas as far as they are not all 255.
void WritePalette(Sink& sink, const PaletteIndex& palette)
{
    std::vector<std::uint8_t> colours, alphas;
    for (std::size_t i = 0; i < palette.Size(); ++i) {
        const auto channels = std::bit_cast<std::array<std::uint8_t, 4>>(palette.Pixels()[i]);
        colours.insert(colours.end(), channels.begin(), channels.begin() + 3);
        if (channels[3] != 255)
            alphas.push_back(channels[3]);
    }
    WriteChunk(sink, Type("PLTE"), colours);
    if (!alphas.empty())
        WriteChunk(sink, Type("tRNS"), alphas);
}

// The largest difference of a channel between two pixels.
int Step(const std::uint8_t* a, const std::uint8_t* b) noexcept
{
    int largest = 0;
    for (int k = 0; k < 4; ++k)
        largest = std::max(largest, std::abs(a[k] - b[k]));
    return largest;
}

// Drawings, text and screens have areas of one colour with sharp edges. Photographs have few equal
// neighbours, and where they have many (a clear sky) the others differ little. One row in eight tells.
Likeness LikenessOf(const Bitmap& picture, int from, int to)
{
    constexpr int kSmall = 4;
    std::size_t equal = 0, small = 0, large = 0;
    for (int y = from; y < to; y += 8) {
        const std::uint8_t* const row = picture.Row(y);
        for (std::size_t i = 4; i < picture.Stride(); i += 4) {
            const int step = Step(row + i, row + i - 4);
            equal += step == 0;
            small += step != 0 && step <= kSmall;
            large += step > kSmall;
        }
    }
    return 3 * equal >= small + large && 3 * large > small ? Likeness::Repeats : Likeness::Residues;
}

// A packed row with the margins that filters want.
class PackedRow {
public:
    explicit PackedRow(std::size_t bytes) : bytes(bytes + 2 * kRowMargin) { }
    [[nodiscard]] std::uint8_t* Data() noexcept { return bytes.data() + kRowMargin; }

private:
    std::vector<std::uint8_t> bytes;
};

class Encoder {
public:
    Encoder(const Bitmap& picture, Form& form, Sink& sink)
        : picture(picture)
        , form(form)
        , width(static_cast<std::size_t>(picture.Width()))
        , rowBytes((width * form.BitsPerPixel() + 7) / 8)
        , bandRows(static_cast<int>(std::max<std::size_t>(1, kBandGoal / (rowBytes + 1))))
        , stream(sink, static_cast<std::size_t>(bandRows) * (rowBytes + 1) + kRowMargin, form.Step())
        , current(std::max(rowBytes, width))
        , above(std::max(rowBytes, width))
    {
    }

    void WriteRows()
    {
        for (int y = 0; y < picture.Height(); y += bandRows)
            WriteBand(y, std::min(picture.Height(), y + bandRows));
    }

private:
    void WriteBand(int from, int to)
    {
        const bool direct = form.colour != ColourType::Palette && form.depth == 8;
        const Likeness likeness = direct ? LikenessOf(picture, from, to) : Likeness::Repeats;
        std::uint8_t* const room = stream.Room();
        std::uint8_t* end = room;
        for (int y = from; y < to; ++y) {
            PackRow(form, picture.Row(y), current.Data(), width);
            // Filters look a little behind the row: what they see there must not depend on the processor.
            std::memset(current.Data() + rowBytes, 0, kRowMargin);
            Filter filter = kNone;
            if (likeness == Likeness::Residues)
                filter = BestFilter(current.Data(), above.Data(), rowBytes, form.Step());
            *end++ = filter;
            FilterRow(filter, current.Data(), above.Data(), end, rowBytes, form.Step());
            end += rowBytes;
            std::swap(current, above);
        }
        stream.Write(static_cast<std::size_t>(end - room), likeness, to == picture.Height());
    }

    const Bitmap& picture;
    Form& form;
    std::size_t width, rowBytes;
    int bandRows;
    DeflateStream stream;
    PackedRow current, above;
};

} // namespace

void Encode(const Bitmap& picture, int, Sink& sink)
try {
    Form form = FormOf(picture);
    sink.Write(kSignature);
    WriteHeader(sink, picture, form);
    if (form.colour == ColourType::Palette)
        WritePalette(sink, form.palette);
    Encoder(picture, form, sink).WriteRows();
    WriteChunk(sink, Type("IEND"), {});
} catch (const std::bad_alloc&) {
    throw OutOfMemoryException("mémoire insuffisante pour écrire cette image");
}

} // namespace veltrane::codecs::png
