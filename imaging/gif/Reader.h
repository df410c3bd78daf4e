#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "imaging/bits/Bytes.h"
#include "imaging/lzw/GifLzw.h"
#include "imaging/pixels/Bitmap.h"

struct GifFileType;

namespace veltrane::imaging {

/// The first frame of a GIF: where it lies on the logical screen and how its rows come.
struct GifFrame {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool interlaced = false;
};

/// Reads a GIF up to the rows of its first frame. Every failure is raised as Fault or
/// std::bad_alloc; the library's own states stay in here.
class GifReader {
public:
    /// Reads up to the first frame's pixels. `file` must outlive the reader.
    explicit GifReader(Bytes file);
    ~GifReader();
    GifReader(const GifReader&) = delete;
    GifReader& operator=(const GifReader&) = delete;

    [[nodiscard]] int ScreenWidth() const noexcept;
    [[nodiscard]] int ScreenHeight() const noexcept;
    [[nodiscard]] const GifFrame& Frame() const noexcept { return frame; }

    /// The frame's colours: its own, else the file's, else shades of grey. The transparent index is
    /// transparent black; an index that the palette has not is opaque black.
    [[nodiscard]] Palette Colours() const;

    /// The index that is transparent, or -1.
    [[nodiscard]] int TransparentIndex() const noexcept { return transparent; }

    /// The frame's next row as it is stored (interlaced ones in the order of their passes): Frame().width
    /// indices, valid until the next call.
    [[nodiscard]] const std::uint8_t* ReadRow();

private:
    struct Source;
    struct Closer {
        void operator()(GifFileType* gif) const noexcept;
    };

    void FindFrame();
    void ReadExtension();
    void ReadRowByLibrary();
    void TurnToLibrary();
    [[noreturn]] void Fail() const;

    std::unique_ptr<Source> source;
    std::unique_ptr<GifFileType, Closer> gif;
    std::unique_ptr<GifLzw> unpacker; ///< null from the first fault in the data on
    std::size_t unpacked = 0; ///< rows that it gave
    std::vector<std::uint8_t> line; ///< a row that the library read
    GifFrame frame;
    int transparent = -1;
};

} // namespace veltrane::imaging
