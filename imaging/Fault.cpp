#include "imaging/Fault.h"

#include <array>
#include <cstddef>
#include <utility>

namespace veltrane::imaging {

namespace {

using Code = Fault::Code;
using Kind = Fault::Kind;

struct Row {
    Code code;
    Kind kind;
    const char* name;
};

// One row for each code, in their order.
constexpr auto kRows = std::to_array<Row>({
    { Code::FormatUnknown, Kind::NotSupported, "FormatUnknown" },
    { Code::Damaged, Kind::Damaged, "Damaged" },
    { Code::Incomplete, Kind::Damaged, "Incomplete" },
    { Code::NoPixels, Kind::Damaged, "NoPixels" },
    { Code::SideOutOfRange, Kind::OverLimits, "SideOutOfRange" },
    { Code::PixelsOverLimit, Kind::NoMemory, "PixelsOverLimit" },
    { Code::NoMemory, Kind::NoMemory, "NoMemory" },
    { Code::BmpVariantUnknown, Kind::NotSupported, "BmpVariantUnknown" },
    { Code::CinepakDamaged, Kind::Damaged, "CinepakDamaged" },
    { Code::CinepakIncomplete, Kind::Damaged, "CinepakIncomplete" },
    { Code::GifDamaged, Kind::Damaged, "GifDamaged" },
    { Code::GifFrameOutOfProportion, Kind::Damaged, "GifFrameOutOfProportion" },
    { Code::GifImageMissing, Kind::Damaged, "GifImageMissing" },
    { Code::GifIncomplete, Kind::Damaged, "GifIncomplete" },
    { Code::JpegComponentsNotSupported, Kind::NotSupported, "JpegComponentsNotSupported" },
    { Code::JpegDamaged, Kind::Damaged, "JpegDamaged" },
    { Code::JpegIncomplete, Kind::Damaged, "JpegIncomplete" },
    { Code::JpegPrecisionNotSupported, Kind::NotSupported, "JpegPrecisionNotSupported" },
    { Code::JpegProcessNotSupported, Kind::NotSupported, "JpegProcessNotSupported" },
    { Code::PictBoundsInconsistent, Kind::Damaged, "PictBoundsInconsistent" },
    { Code::PictColorTableDamaged, Kind::Damaged, "PictColorTableDamaged" },
    { Code::PictDirectPixelsIndexed, Kind::Damaged, "PictDirectPixelsIndexed" },
    { Code::PictDrawingOutOfProportion, Kind::Damaged, "PictDrawingOutOfProportion" },
    { Code::PictFrameOutOfProportion, Kind::Damaged, "PictFrameOutOfProportion" },
    { Code::PictPackTypeUnknown, Kind::NotSupported, "PictPackTypeUnknown" },
    { Code::PictPatternDamaged, Kind::Damaged, "PictPatternDamaged" },
    { Code::PictPixelDataDamaged, Kind::Damaged, "PictPixelDataDamaged" },
    { Code::PictPixelSizeUnknown, Kind::NotSupported, "PictPixelSizeUnknown" },
    { Code::PictRegionDamaged, Kind::Damaged, "PictRegionDamaged" },
    { Code::PictRegionOutOfProportion, Kind::Damaged, "PictRegionOutOfProportion" },
    { Code::PngChecksumWrong, Kind::Damaged, "PngChecksumWrong" },
    { Code::PngChunkUnknown, Kind::Damaged, "PngChunkUnknown" },
    { Code::PngColourTypeOrDepthUnknown, Kind::Damaged, "PngColourTypeOrDepthUnknown" },
    { Code::PngDataChecksumWrong, Kind::Damaged, "PngDataChecksumWrong" },
    { Code::PngDataDamaged, Kind::Damaged, "PngDataDamaged" },
    { Code::PngDataMissing, Kind::Damaged, "PngDataMissing" },
    { Code::PngDataTooShort, Kind::Damaged, "PngDataTooShort" },
    { Code::PngFilterTypeUnknown, Kind::Damaged, "PngFilterTypeUnknown" },
    { Code::PngHeaderDamaged, Kind::Damaged, "PngHeaderDamaged" },
    { Code::PngIncomplete, Kind::Damaged, "PngIncomplete" },
    { Code::PngMethodUnknown, Kind::Damaged, "PngMethodUnknown" },
    { Code::PngPaletteDamaged, Kind::Damaged, "PngPaletteDamaged" },
    { Code::PngPaletteMissing, Kind::Damaged, "PngPaletteMissing" },
    { Code::PngStructureDamaged, Kind::Damaged, "PngStructureDamaged" },
    { Code::QuickTimeColorTableMissing, Kind::Damaged, "QuickTimeColorTableMissing" },
    { Code::QuickTimeCompressionUnknown, Kind::NotSupported, "QuickTimeCompressionUnknown" },
    { Code::QuickTimeDamaged, Kind::Damaged, "QuickTimeDamaged" },
    { Code::QuickTimeDepthUnknown, Kind::NotSupported, "QuickTimeDepthUnknown" },
    { Code::QuickTimeDescriptionDamaged, Kind::Damaged, "QuickTimeDescriptionDamaged" },
    { Code::QuickTimeIncomplete, Kind::Damaged, "QuickTimeIncomplete" },
    { Code::QuickTimeMatrixNotSupported, Kind::NotSupported, "QuickTimeMatrixNotSupported" },
    { Code::TiffCompressionNotSupported, Kind::NotSupported, "TiffCompressionNotSupported" },
    { Code::TiffDamaged, Kind::Damaged, "TiffDamaged" },
    { Code::TiffIncomplete, Kind::Damaged, "TiffIncomplete" },
    { Code::TiffInkSetNotSupported, Kind::NotSupported, "TiffInkSetNotSupported" },
    { Code::TiffPhotometricNotSupported, Kind::NotSupported, "TiffPhotometricNotSupported" },
    { Code::TiffSampleFormatNotSupported, Kind::NotSupported, "TiffSampleFormatNotSupported" },
    { Code::TiffSamplesNotSupported, Kind::NotSupported, "TiffSamplesNotSupported" },
});

constexpr bool InOrder()
{
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        if (kRows[i].code != static_cast<Code>(i))
            return false;
    }
    return kRows.back().code == Code::TiffSamplesNotSupported;
}
static_assert(InOrder());

constexpr const Row& RowOf(Code code) noexcept
{
    return kRows[static_cast<std::size_t>(code)];
}

} // namespace

Fault::Fault(Code code, std::string detail) : code(code), kind(RowOf(code).kind)
{
    if (!detail.empty())
        this->detail = std::make_shared<const std::string>(std::move(detail));
}

const char* Fault::what() const noexcept
{
    return RowOf(code).name;
}

} // namespace veltrane::imaging
