#include "platform/codecs/png/Encode.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "platform/Exceptions.h"
#include "platform/codecs/png/Chunks.h"
#include "platform/codecs/png/DeflateStream.h"
#include "platform/codecs/png/FilterRow.h"
#include "platform/codecs/png/Form.h"
#include "platform/codecs/png/Texture.h"
#include "platform/codecs/png/Trial.h"
#include "platform/codecs/png/Way.h"

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
        , layout { form.Step(), rowBytes + 1 }
        , bandRows(static_cast<int>(std::max<std::size_t>(1, kBandGoal / layout.stride)))
        , stream(sink, static_cast<std::size_t>(bandRows) * layout.stride + kRowMargin, layout)
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
        const Way way = WayFor(from, to);
        std::uint8_t* const room = stream.Room();
        const std::uint8_t* const end = Fill(room, from, to, IsFiltered(way));
        stream.Write(static_cast<std::size_t>(end - room), LikenessOf(way), to == picture.Height());
    }

    // Stores rows behind each other; the end of them.
    std::uint8_t* Fill(std::uint8_t* end, int from, int to, bool filtered)
    {
        for (int y = from; y < to; ++y) {
            PackRow(form, picture.Row(y), current.Data(), width);
            // Filters look a little behind the row: what they see there must not depend on the processor.
            std::memset(current.Data() + rowBytes, 0, kRowMargin);
            Filter filter = kNone;
            if (filtered)
                filter = BestFilter(current.Data(), above.Data(), rowBytes, form.Step());
            *end++ = filter;
            FilterRow(filter, current.Data(), above.Data(), end, rowBytes, form.Step());
            end += rowBytes;
            std::swap(current, above);
        }
        return end;
    }

    // Where it is open, the ways are tried.
    Way WayFor(int from, int to)
    {
        constexpr int kWorthTryingAll = 12; // bands of a picture: a trial of all ways takes as long as some
        if (form.colour == ColourType::Palette || form.depth < 8)
            return Way::Drawing;
        const Texture texture = TextureOf(picture, from, to);
        if (texture == Texture::Hard)
            return Way::Drawing;
        if (texture == Texture::Natural)
            return natural.Ask([&] { return PhotoOrGrain(from, to); });
        if (picture.Height() < kWorthTryingAll * bandRows)
            return Way::Photo;
        return shaded.Ask([&] { return AnyWay(from, to); });
    }

    // Two searches of the same rows. Grain takes several times as long, so it has to be worth it.
    Way PhotoOrGrain(int from, int to)
    {
        const std::uint64_t photo = BitsOf(Way::Photo, from, to), grain = BitsOf(Way::Grain, from, to);
        return photo <= grain + grain / 8 ? Way::Photo : Way::Grain;
    }

    // All of them, on some rows: looking for all that repeats takes longest.
    Way AnyWay(int from, int to)
    {
        const int some = std::min(to, from + std::max(4, bandRows / 8));
        const std::uint64_t fast = std::min(BitsOf(Way::Photo, from, some), BitsOf(Way::Grain, from, some));
        const std::uint64_t shades = BitsOf(Way::Shades, from, some),
                            drawing = BitsOf(Way::Drawing, from, some), least = std::min(shades, drawing);
        if (fast <= least + least / 5)
            return PhotoOrGrain(from, to);
        return shades < drawing ? Way::Shades : Way::Drawing;
    }

    std::uint64_t BitsOf(Way way, int from, int to)
    {
        if (!trial)
            trial = std::make_unique<Trial>();
        const PackedRow before = above;
        std::vector<std::uint8_t> rows(static_cast<std::size_t>(to - from) * layout.stride + kRowMargin);
        const std::uint8_t* const end = Fill(rows.data(), from, to, IsFiltered(way));
        above = before;
        return trial->BitsOf(
            { rows.data(), static_cast<std::size_t>(end - rows.data()) }, LikenessOf(way), layout);
    }

    const Bitmap& picture;
    Form& form;
    std::size_t width, rowBytes;
    Layout layout;
    int bandRows;
    DeflateStream stream;
    PackedRow current, above;
    std::unique_ptr<Trial> trial;
    Verdict natural, shaded;
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
