#include "imaging/jpeg/baseline/Decoder.h"

#include <algorithm>
#include <utility>

#include "imaging/bits/Processor.h"

namespace veltrane::imaging::jpeg::baseline {

namespace {

constexpr int kBlockSide = 8;

Chroma SubsamplingOf(const Frame& frame)
{
    if (frame.components.size() == 1)
        return Chroma::None;
    const Component& luma = frame.components.front();
    if (luma.across == 1)
        return Chroma::Full;
    return luma.down == 1 ? Chroma::HalfAcross : Chroma::HalfBoth;
}

int Shared(int pixels, int by)
{
    return (pixels + by - 1) / by;
}

} // namespace

std::unique_ptr<Decoder> Decoder::For(const jpeg_decompress_struct& header)
{
    if (!HasAvx2() || !HasBmi2())
        return nullptr;
    std::optional<Frame> frame = ReadFrame(header);
    if (!frame)
        return nullptr;
    std::unique_ptr<Decoder> decoder(new Decoder(std::move(*frame)));
    return decoder->scan.Valid() ? std::move(decoder) : nullptr;
}

Decoder::Decoder(Frame read) : frame(std::move(read)), chroma(SubsamplingOf(frame)), scan(frame)
{
    for (const Component& component : frame.components)
        planes.emplace_back(frame, component);
}

Decoder::Plane::Plane(const Frame& frame, const Component& component)
    : rowsPerMcu(kBlockSide * component.down)
    , width(static_cast<std::size_t>(Shared(frame.width, frame.components.front().across / component.across)))
    , stride(2 * kSampleMargin
          + Scan::McusPerRow(frame) * static_cast<std::size_t>(kBlockSide * component.across))
    , height(Shared(frame.height, frame.components.front().down / component.down))
    , samples(stride * static_cast<std::size_t>(2 * rowsPerMcu) + kSampleMargin)
{
}

std::uint8_t* Decoder::Plane::Row(int row) noexcept
{
    return samples.data() + kSampleMargin + stride * static_cast<std::size_t>(row % (2 * rowsPerMcu));
}

// The first and the last row are repeated above and below the picture.
const std::uint8_t* Decoder::Plane::RowWithin(int row) noexcept
{
    return Row(std::clamp(row, 0, height - 1));
}

void Decoder::Plane::RepeatEnds(int from)
{
    for (int row = from; row < from + rowsPerMcu; ++row) {
        std::uint8_t* const first = Row(row);
        first[-1] = first[0];
        first[width] = first[width - 1];
    }
}

// The last pixel row of a row of MCUs waits for the chroma below it.
bool Decoder::DecodeMcus()
{
    std::vector<PlaneRows> targets;
    for (Plane& plane : planes)
        targets.push_back({ plane.Row(mcuRows * plane.rowsPerMcu), plane.stride });
    if (!scan.DecodeRow(targets))
        return false;
    for (Plane& plane : planes)
        plane.RepeatEnds(mcuRows * plane.rowsPerMcu);
    ++mcuRows;
    const int all = mcuRows * planes.front().rowsPerMcu;
    ready = all >= frame.height ? frame.height : all - (SharesRows() ? 1 : 0);
    return true;
}

ChromaRow Decoder::ChromaFor(Plane& plane, int y)
{
    if (!SharesRows())
        return { plane.RowWithin(y), nullptr };
    const int row = y / 2;
    return { plane.RowWithin(row), plane.RowWithin(y % 2 == 0 ? row - 1 : row + 1) };
}

int Decoder::Rows(std::uint8_t* rgba, std::size_t stride, int most)
{
    if (given == ready && !DecodeMcus())
        return 0;
    const int count = std::min(most, ready - given);
    for (int i = 0; i < count; ++i, ++given) {
        std::array<ChromaRow, 2> blueAndRed {};
        if (chroma != Chroma::None)
            blueAndRed = { ChromaFor(planes[1], given), ChromaFor(planes[2], given) };
        WriteRgbaRow(chroma, planes[0].Row(given), blueAndRed, rgba + static_cast<std::size_t>(i) * stride,
            static_cast<std::size_t>(frame.width));
    }
    return count;
}

} // namespace veltrane::imaging::jpeg::baseline
