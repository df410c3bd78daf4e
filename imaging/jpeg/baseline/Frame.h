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

/// A Huffman table as the file specifies it. Source: T.81, B.2.4.2.
struct HuffmanSpec {
    std::array<std::uint8_t, 17> counts; ///< BITS: how many codes there are of each length; none of length 0
    std::array<std::uint8_t, 256> symbols; ///< HUFFVAL: in the order of their codes

    [[nodiscard]] bool operator==(const HuffmanSpec&) const = default;
};

/// A component of the frame.
struct Component {
    int across = 1, down = 1; ///< sampling factors: blocks of this component in an MCU
    std::array<std::uint16_t, kBlockSize> quantisation; ///< in the order of rows, not zigzag
    HuffmanSpec dc, ac; ///< of its DC differences and its AC coefficients
};

/// What decoding the one scan of a sequential picture of 8-bit samples needs to know.
struct Frame {
    int width = 0, height = 0; ///< pixels
    std::vector<Component>
        components; ///< one: grey; three: YCbCr, with one block each of Cb and Cr in an MCU
    unsigned restartInterval = 0; ///< MCUs between restart markers; 0: there are no markers
    Bytes scan; ///< from the first entropy-coded byte to the end of the file
};

/// The frame of a file whose header has been read. Empty for every other kind: progressive, several scans,
/// CMYK or YCCK, unusual sampling factors, too narrow.
[[nodiscard]] std::optional<Frame> ReadFrame(const jpeg_decompress_struct& header);

} // namespace veltrane::imaging::jpeg::baseline
