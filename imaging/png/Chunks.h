#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

#include "imaging/Limits.h"
#include "imaging/bits/Bytes.h"
#include "imaging/colour/CodePointProfile.h"
#include "imaging/colour/Colour.h"

namespace veltrane::imaging::png {

/// Every PNG begins with these. Source: PNG 3rd ed., 5.2.
constexpr std::array<std::uint8_t, 8> kSignature { 0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n' };

/// A chunk's type as the number its four letters make, first letter highest.
constexpr std::uint32_t Type(const char (&letters)[5]) noexcept
{
    std::uint32_t type = 0;
    for (int i = 0; i < 4; ++i)
        type = type << 8 | static_cast<std::uint8_t>(letters[i]);
    return type;
}

/// How the samples of a pixel lie in the file. Source: PNG 3rd ed., 6.1.
enum class ColourType : std::uint8_t { Grey = 0, Rgb = 2, Palette = 3, GreyAlpha = 4, Rgba = 6 };

/// The IHDR chunk, checked. Source: PNG 3rd ed., 11.2.1.
struct Header {
    std::int64_t width = 0;
    std::int64_t height = 0;
    int depth = 8; ///< bits a sample: 1, 2, 4, 8 or 16
    ColourType colour = ColourType::Rgb;
    bool interlaced = false;

    [[nodiscard]] int Channels() const noexcept;
    [[nodiscard]] int BitsPerPixel() const noexcept { return Channels() * depth; }
};

/// What the chunks around the pixel data tell. The views point into the file and are empty where the chunk
/// is missing.
struct Chunks {
    Header header;
    Bytes palette; ///< PLTE: three bytes an entry
    Bytes transparency; ///< tRNS
    Bytes profile; ///< iCCP, its name and the compressed profile
    Bytes exif; ///< eXIf
    std::optional<CodePoints> codePoints;
    bool srgb = false;
    std::optional<double> gamma; ///< gAMA as a fraction: 0.45455
    std::optional<Primaries> primaries;
    std::size_t dataChunks = 0; ///< number of IDAT chunks
    std::size_t dataBytes = 0; ///< bytes in all of them
    bool ended = false; ///< IEND was seen
};

/// Reads all chunks. Raises Fault when the file is cut off before its pixel data ends, when a critical chunk
/// is missing or fails its checksum, and when the header makes no sense. Damaged ancillary chunks and
/// everything wrong behind the pixel data are passed over.
[[nodiscard]] Chunks ReadChunks(Bytes file);

/// Hands out the contents of the IDAT chunks, in order. Only for a file that ReadChunks accepted.
void ForEachData(Bytes file, const std::function<void(Bytes)>& take);

} // namespace veltrane::imaging::png
