#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "imaging/bits/Bytes.h"

struct jpeg_decompress_struct;

namespace veltrane::imaging::jpeg::baseline {

constexpr std::size_t kBlockSize = 64; ///< coefficients, and samples, of a block of 8 x 8

/// A Huffman table as it stands in the file. Source: T.81, B.2.4.2.
struct CodeList {
    std::array<std::uint8_t, 17> counts; ///< codes of each length in bits; none of length 0
    std::array<std::uint8_t, 256> symbols; ///< in the order of their codes

    [[nodiscard]] bool operator==(const CodeList&) const = default;
};

/// One of a picture's planes.
struct Component {
    int across = 1, down = 1; ///< blocks of it in a unit of the scan
    std::array<std::uint16_t, kBlockSize> quantisers; ///< row by row
    CodeList differences, coefficients; ///< the codes of its first coefficients, and of all others
};

/// What has to be known to decode the one scan of a sequential picture of 8-bit samples.
struct Frame {
    int width = 0, height = 0; ///< pixels
    std::vector<Component> components; ///< one, grey; or three, YCbCr, the last two with a block to a unit
    unsigned restartInterval = 0; ///< units between restart markers; 0: there are none
    Bytes scan; ///< from the first coded byte on, up to the end of the file
};

/// The frame of a file whose header has been read. Nothing when it is of another kind: progressive, in
/// several scans, of inks, with unusual sampling or too narrow.
[[nodiscard]] std::optional<Frame> FrameOf(const jpeg_decompress_struct& header);

} // namespace veltrane::imaging::jpeg::baseline
