#pragma once

#include <cstdint>
#include <memory>

#include "imaging/Limits.h"
#include "imaging/bits/Bytes.h"
#include "imaging/jpeg/Metadata.h"

namespace veltrane::imaging::jpeg {

/// The colour space of the stored samples, as far as it matters.
enum class Kind {
    Grey,
    Colour, ///< YCbCr or RGB
    Cmyk, ///< CMYK or YCCK
};

/// The layout of the samples that Rows returns.
enum class Layout {
    Rgba, ///< 4 bytes a pixel, alpha 255; of Grey and Colour
    Grey, ///< 1 byte a pixel; of Grey
    Cmyk, ///< 4 bytes a pixel, as stored; of Cmyk
};

/// A JPEG file being read: first the header, then rows from top to bottom. Every operation raises
/// Fault or std::bad_alloc.
class Reader {
public:
    /// Reads up to the pixels and checks the size. `file` must outlive this object.
    Reader(Bytes file, const Limits& limits);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    [[nodiscard]] int Width() const noexcept; ///< as stored, in pixels
    [[nodiscard]] int Height() const noexcept;
    [[nodiscard]] Kind Stored() const noexcept;

    /// Whether 255 means no ink, as Adobe's programs write it. Source: Technical Note 5116, 18.
    [[nodiscard]] bool InvertedCmyk() const noexcept;

    [[nodiscard]] const Metadata& Segments() const noexcept;

    /// Must come before the first Rows. Of a picture in several scans, decodes all.
    void Start(Layout layout);

    /// Decodes the next rows into `target`, `stride` bytes apart: at least one, at most `most`. Returns how
    /// many. Must not be called after the last row.
    [[nodiscard]] int Rows(std::uint8_t* target, std::size_t stride, int most);

private:
    struct Library;

    std::unique_ptr<Library> library;
};

} // namespace veltrane::imaging::jpeg
