#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "imaging/Limits.h"
#include "imaging/bits/Bytes.h"
#include "imaging/tiff/Directory.h"

struct tiff;

namespace veltrane::imaging {

/// A TIFF open in the library at the page to show, over bytes in memory. Says nothing on the error stream;
/// the library's complaints about pixels are kept, because some of its decoders only complain.
class TiffFile {
public:
    /// `file` must outlive it. Raises Fault when no page can be read, and what
    /// Limits::Check raises for the page's sides.
    TiffFile(Bytes file, const Limits& limits);
    ~TiffFile();
    TiffFile(const TiffFile&) = delete;
    TiffFile& operator=(const TiffFile&) = delete;

    [[nodiscard]] tiff* Handle() const noexcept { return handle.get(); }
    [[nodiscard]] Bytes Contents() const noexcept;
    [[nodiscard]] bool TellsExtraSamples() const noexcept { return page.tellsExtraSamples; }

    /// From here on, complaints are about pixels.
    void BeginPixels() noexcept;

    /// Raises Fault when `fine` is false or the library has complained about pixels.
    void CheckPixels(bool fine) const;

private:
    struct Source;
    struct Closer {
        void operator()(tiff* file) const noexcept;
    };

    std::unique_ptr<Source> source;
    std::unique_ptr<tiff, Closer> handle;
    TiffDirectory page;
};

} // namespace veltrane::imaging
