#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "imaging/jpeg/baseline/Frame.h"
#include "imaging/jpeg/baseline/RgbaRows.h"
#include "imaging/jpeg/baseline/Scan.h"

namespace veltrane::imaging::jpeg::baseline {

/// Decodes what most files are, sequential pictures with nothing unusual about them, to opaque RGBA: exactly
/// what the library makes of them, in two thirds of its time. Whatever else turns up, damage included, is
/// left to the library, which knows what to make of it.
class Decoder {
public:
    /// A decoder for the file whose header has been read, the file in memory; null when it is of another
    /// kind, or the processor is too old. Raises std::bad_alloc.
    [[nodiscard]] static std::unique_ptr<Decoder> For(const jpeg_decompress_struct& header);

    /// Decodes the next rows into `rgba`, `stride` bytes apart: at most `most`. Returns how many; 0 when the
    /// library has to go on in its place. Not to be called behind the last row.
    [[nodiscard]] int Rows(std::uint8_t* rgba, std::size_t stride, int most);

private:
    explicit Decoder(Frame read);

    // The latest samples of a component: of two rows of units.
    struct Plane {
        Plane(const Frame& frame, const Component& component);

        [[nodiscard]] std::uint8_t* Row(int row) noexcept;
        [[nodiscard]] const std::uint8_t* RowWithin(int row) noexcept;
        void RepeatEnds(int from);

        int rowsAtOnce; // of a row of units
        std::size_t width, stride; // samples
        int height;
        std::vector<std::uint8_t> samples;
    };

    [[nodiscard]] bool DecodeUnits();
    [[nodiscard]] ChromaRow ChromaFor(Plane& plane, int y);
    [[nodiscard]] bool SharesRows() const noexcept { return chroma == Chroma::HalfBoth; }

    Frame frame;
    Chroma chroma;
    Scan scan;
    std::vector<Plane> planes;
    int unitRows = 0; // that are decoded
    int ready = 0, given = 0; // pixel rows
};

} // namespace veltrane::imaging::jpeg::baseline
