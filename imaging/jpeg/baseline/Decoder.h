#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "imaging/jpeg/baseline/Frame.h"
#include "imaging/jpeg/baseline/RgbaRows.h"
#include "imaging/jpeg/baseline/Scan.h"

namespace veltrane::imaging::jpeg::baseline {

/// Decodes what most files are, sequential pictures without unusual features, to opaque RGBA: the same pixels
/// as the library's, in two thirds of its time. Everything else, damage included, is left to the library.
class Decoder {
public:
    /// A decoder for the file in memory whose header has been read; null when the file is of another kind or
    /// the processor has no AVX2. Raises std::bad_alloc.
    [[nodiscard]] static std::unique_ptr<Decoder> For(const jpeg_decompress_struct& header);

    /// Decodes the next rows, at most `most`, into `rgba`, `stride` bytes apart. Returns how many; 0 when the
    /// library must go on in its place. Must not be called after the last row.
    [[nodiscard]] int Rows(std::uint8_t* rgba, std::size_t stride, int most);

private:
    explicit Decoder(Frame read);

    // The latest samples of a component, those of two rows of MCUs.
    struct Plane {
        Plane(const Frame& frame, const Component& component);

        [[nodiscard]] std::uint8_t* Row(int row) noexcept;
        [[nodiscard]] const std::uint8_t* RowWithin(int row) noexcept;
        void RepeatEnds(int from);

        int rowsPerMcu; // sample rows
        std::size_t width, stride; // samples
        int height;
        std::vector<std::uint8_t> samples;
    };

    [[nodiscard]] bool DecodeMcus();
    [[nodiscard]] ChromaRow ChromaFor(Plane& plane, int y);
    [[nodiscard]] bool SharesRows() const noexcept { return chroma == Chroma::HalfBoth; }

    Frame frame;
    Chroma chroma;
    Scan scan;
    std::vector<Plane> planes;
    int mcuRows = 0; // rows of MCUs that are decoded
    int ready = 0, given = 0; // pixel rows
};

} // namespace veltrane::imaging::jpeg::baseline
