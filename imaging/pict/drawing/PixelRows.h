#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "imaging/pict/Budget.h"
#include "imaging/pict/drawing/PixelMap.h"

namespace veltrane::imaging::pict {

enum class Packing {
    Raw, ///< rows as they are, whatever the map says
    Packed, ///< as the map's packing type and depth say; rows of fewer than 8 bytes are never packed
};

/// Reads a bitmap's rows one after the other, so that no more of it than a row is ever in memory.
/// Source: Imaging With QuickDraw, appendix A, "PixData", and chapter 4, PixMap's "packType".
class PixelRows {
public:
    /// `map` and `in` must outlive this. The pixels begin where `in` stands.
    PixelRows(const PixelMap& map, Packing packing, ByteReader& in, Budget& budget);

    /// The next row as `map.bounds.Width()` pixels.
    /// Raises Fault when the row is cut off or does not hold all its pixels.
    void Next(std::span<Rgba> pixels);

    /// Steps over the next row.
    void Skip() { (void)Stored(); }

private:
    enum class Form { Raw, Bytes, Words, Planes, Triples };

    [[nodiscard]] static Form FormOf(const PixelMap& map, Packing packing);
    [[nodiscard]] Bytes Stored();
    [[nodiscard]] Bytes Unpacked(std::size_t needed);
    void Planes(std::span<Rgba> pixels);

    const PixelMap& map;
    ByteReader& in;
    Budget& budget;
    Form form;
    std::vector<std::uint8_t> row;
};

} // namespace veltrane::imaging::pict
