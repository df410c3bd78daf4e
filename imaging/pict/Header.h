#pragma once

#include <cstddef>
#include <optional>

#include "imaging/bits/Bytes.h"
#include "imaging/pict/drawing/Geometry.h"

namespace veltrane::imaging::pict {

/// What stands before the first opcode.
struct Header {
    int version = 1; ///< 1: opcodes of a byte; 2: opcodes of a word, at even places
    std::size_t start = 0; ///< where the picture begins: 0, or 512 behind a file header
    std::size_t opcodes = 0; ///< where the first opcode stands
    Rect frame; ///< the picture's coordinates: each of them is one pixel of the result
};

/// Whether `head`, a file's beginning, is that of a picture: the version's mark where it belongs, and a
/// frame that holds something.
[[nodiscard]] bool LooksLikePicture(Bytes head) noexcept;

/// Reads the header of a whole file. Raises Fault when it is none or cut off.
/// Source: Imaging With QuickDraw, chapter 7, "Picture", and appendix A, "Version and Header Opcodes".
[[nodiscard]] Header ReadHeader(Bytes file);

} // namespace veltrane::imaging::pict
