#include "imaging/png/Encode.h"

#include <algorithm>
#include <array>
#include <vector>

#include "imaging/png/Chunks.h"
#include "imaging/png/FilterRow.h"
#include "imaging/png/Form.h"
#include "imaging/png/IdatStream.h"
#include "imaging/png/Pixel.h"
#include "imaging/png/StoredRows.h"
#include "imaging/png/WayChooser.h"

namespace veltrane::imaging::png {

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
        const auto channels = Channels(palette.Pixels()[i]);
        colours.insert(colours.end(), channels.begin(), channels.begin() + 3);
        if (channels[3] != 255)
            alphas.push_back(channels[3]);
    }
    WriteChunk(sink, Type("PLTE"), colours);
    if (!alphas.empty())
        WriteChunk(sink, Type("tRNS"), alphas);
}

class Encoder {
public:
    Encoder(const Bitmap& picture, const Form& form, Sink& sink)
        : picture(picture)
        , rows(picture, form, { 0, static_cast<std::size_t>(picture.Width()) })
        , bandRows(static_cast<int>(std::max<std::size_t>(1, kBandGoal / rows.RowLayout().stride)))
        , stream(sink, static_cast<std::size_t>(bandRows) * rows.RowLayout().stride + kRowMargin,
              rows.RowLayout())
        , chooser(picture, form)
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
        const Way way = chooser.WayFor(from, to);
        std::uint8_t* const room = stream.Room();
        const std::uint8_t* const end = rows.Write(room, to, IsFiltered(way));
        stream.Write(static_cast<std::size_t>(end - room), LikenessOf(way), to == picture.Height());
    }

    const Bitmap& picture;
    StoredRows rows;
    int bandRows;
    IdatStream stream;
    WayChooser chooser;
};

} // namespace

void Encode(const Bitmap& picture, int, Sink& sink)
{
    const Form form = FormOf(picture);
    sink.Write(kSignature);
    WriteHeader(sink, picture, form);
    if (form.colour == ColourType::Palette)
        WritePalette(sink, form.palette);
    Encoder(picture, form, sink).WriteRows();
    WriteChunk(sink, Type("IEND"), {});
}

} // namespace veltrane::imaging::png
