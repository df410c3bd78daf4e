#include "platform/codecs/png/Encode.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
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
#include "platform/codecs/png/Trial.h"

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

enum class Texture {
    Natural, ///< few equal neighbours, as in photographs
    Shaded, ///< areas of one colour, and soft changes
    Hard, ///< areas of one colour with sharp edges: drawings, text, screens
};

// One row in eight tells.
Texture TextureOf(const Bitmap& picture, int from, int to)
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
    if (3 * equal < small + large)
        return Texture::Natural;
    return 2 * small >= large ? Texture::Shaded : Texture::Hard;
}

// How a band's rows are stored: filtered or as they are, with runs alone, pixels that come again, or all that
// repeats.
enum class Way { Photo, Grain, Shades, Drawing };

constexpr bool IsFiltered(Way way) noexcept
{
    return way != Way::Drawing;
}

constexpr Likeness LikenessOf(Way way) noexcept
{
    if (way == Way::Photo)
        return Likeness::Residues;
    return way == Way::Grain ? Likeness::Grain : Likeness::Repeats;
}

// What the last trial found, and for how long that is believed. Trying takes several times as long as
// writing: so it is done the more seldom the longer the same way wins.
class Verdict {
public:
    template<class Try>
    Way Ask(Try tryAll)
    {
        constexpr int kFirstTrust = 4, kMostTrust = 64;
        if (left == 0) {
            const Way before = std::exchange(found, tryAll());
            trust = found == before ? std::clamp(2 * trust, kFirstTrust, kMostTrust) : kFirstTrust;
            left = trust;
        }
        --left;
        return found;
    }

private:
    Way found = Way::Photo;
    int trust = 0, left = 0; // bands
};

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
        constexpr int kWorthTrying = 12; // bands of a picture: a trial takes as long as some of them
        if (form.colour == ColourType::Palette || form.depth < 8)
            return Way::Drawing;
        if (picture.Height() < kWorthTrying * bandRows)
            return TextureOf(picture, from, to) == Texture::Hard ? Way::Drawing : Way::Photo;
        switch (TextureOf(picture, from, to)) {
        case Texture::Natural: return natural.Ask([&] { return Try(from, to, false); });
        case Texture::Shaded: return shaded.Ask([&] { return Try(from, to, true); });
        case Texture::Hard: break;
        }
        return Way::Drawing;
    }

    Way Try(int from, int to, bool all)
    {
        if (!trial)
            trial = std::make_unique<Trial>();
        const PackedRow before = above;
        std::vector<std::uint8_t> rows(static_cast<std::size_t>(to - from) * (rowBytes + 1) + kRowMargin);
        const std::uint8_t* end = Fill(rows.data(), from, to, true);
        const auto bits = [&](Way way) {
            return trial->BitsOf(
                { rows.data(), static_cast<std::size_t>(end - rows.data()) }, LikenessOf(way), form.Step());
        };
        const std::uint64_t photo = bits(Way::Photo), grain = bits(Way::Grain);
        // What takes more time has to be worth it.
        const Way fast = photo <= grain + grain / 16 ? Way::Photo : Way::Grain;
        const std::uint64_t shades = all ? bits(Way::Shades) : 0;
        above = before;
        if (!all)
            return fast;
        end = Fill(rows.data(), from, to, false);
        above = before;
        const std::uint64_t drawing = bits(Way::Drawing), least = std::min(shades, drawing);
        if (std::min(photo, grain) <= least + least / 5)
            return fast;
        return shades < drawing ? Way::Shades : Way::Drawing;
    }

    const Bitmap& picture;
    Form& form;
    std::size_t width, rowBytes;
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
