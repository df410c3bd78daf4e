#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>

namespace veltrane::imaging {

/// Why a picture cannot be decoded or held. Copying raises nothing.
struct Fault final : std::exception {
    /// Whose fault it is.
    enum class Kind {
        Damaged, ///< the file's: damaged, incomplete, or out of all proportion to what it shows
        NotSupported, ///< ours: a format, or a part of one, that we do not read
        OverLimits, ///< a side is longer than the limits allow
        NoMemory, ///< the machine's: it has not the memory, or the limits do not grant it
    };

    /// What is wrong: first with any file, then by format, in the terms of its standard.
    enum class Code {
        FormatUnknown, ///< no format that is read begins so
        Damaged, ///< damaged or incomplete: a reader that is not ours does not say which
        Incomplete, ///< the bytes end too early
        NoPixels, ///< a side below 1
        SideOutOfRange, ///< a side over Limits::maxSide
        PixelsOverLimit, ///< pixels and working memory over Limits::maxBytes; detail: width × height
        NoMemory, ///< the machine has not given the memory for pixels, or for a format's library
        BmpVariantUnknown,
        CinepakDamaged,
        CinepakIncomplete,
        GifDamaged,
        GifFrameOutOfProportion, ///< far larger than the logical screen
        GifImageMissing,
        GifIncomplete,
        JpegComponentsNotSupported,
        JpegDamaged,
        JpegIncomplete,
        JpegPrecisionNotSupported, ///< samples that have not 8 bits
        JpegProcessNotSupported, ///< lossless or hierarchical
        PictBoundsInconsistent, ///< empty, or wider than rowBytes
        PictColorTableDamaged,
        PictDirectPixelsIndexed, ///< a DirectBits opcode with indexed pixels
        PictDrawingOutOfProportion, ///< more work than the frame and the file's length can account for
        PictFrameOutOfProportion, ///< far larger than the file's length can account for
        PictPackTypeUnknown,
        PictPatternDamaged,
        PictPixelDataDamaged,
        PictPixelSizeUnknown,
        PictRegionDamaged,
        PictRegionOutOfProportion,
        PngChecksumWrong,
        PngChunkUnknown,
        PngColourTypeOrDepthUnknown,
        PngDataChecksumWrong,
        PngDataDamaged, ///< the zlib stream
        PngDataMissing,
        PngDataTooShort,
        PngFilterTypeUnknown,
        PngHeaderDamaged,
        PngIncomplete,
        PngMethodUnknown, ///< of compression, filtering or interlacing
        PngPaletteDamaged,
        PngPaletteMissing,
        PngStructureDamaged,
        QuickTimeColorTableMissing,
        QuickTimeCompressionUnknown, ///< detail: the compressor's name, or its type's four characters
        QuickTimeDamaged,
        QuickTimeDepthUnknown,
        QuickTimeDescriptionDamaged,
        QuickTimeIncomplete,
        QuickTimeMatrixNotSupported, ///< turned, mirrored or tilted
        TiffCompressionNotSupported,
        TiffDamaged,
        TiffIncomplete,
        TiffInkSetNotSupported,
        TiffPhotometricNotSupported,
        TiffSampleFormatNotSupported,
        TiffSamplesNotSupported, ///< an unusual number of samples or bits
    };
    using enum Code;

    /// `detail`: what the code's comment says; empty for the others. May raise std::bad_alloc when it is not
    /// empty.
    explicit Fault(Code code, std::string detail = {});

    /// The code's name, for developers.
    [[nodiscard]] const char* what() const noexcept override;

    /// Empty when the code has none.
    [[nodiscard]] std::string_view Detail() const noexcept
    {
        return detail ? std::string_view(*detail) : std::string_view();
    }

    Code code;
    Kind kind; ///< follows from the code

private:
    std::shared_ptr<const std::string> detail;
};

} // namespace veltrane::imaging
