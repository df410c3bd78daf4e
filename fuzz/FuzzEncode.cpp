// Any picture must come back from its file: with its size, and from a PNG pixel by pixel. One source, built
// with CODEC=kPng and CODEC=kJpeg. Five bytes tell size, quality and how the rest makes pixels, so that every
// form that an encoder chooses among is met.

#include CODEC_HEADER

#include <algorithm>
#include <cstring>
#include <vector>

#include "imaging/Codec.h"

using namespace veltrane;
using imaging::Bitmap;

namespace {

class Memory final : public imaging::Sink {
public:
    void Write(imaging::Bytes bytes) override { held.insert(held.end(), bytes.begin(), bytes.end()); }
    std::vector<std::uint8_t> held;
};

/// Repeats its bytes without end.
class Source {
public:
    explicit Source(imaging::Bytes bytes) : bytes(bytes) { }
    std::uint8_t Next()
    {
        if (bytes.empty())
            return 0;
        const std::uint8_t byte = bytes[at];
        at = (at + 1) % bytes.size();
        return byte;
    }

private:
    imaging::Bytes bytes;
    std::size_t at = 0;
};

// One byte a pixel makes grey, a few colours or a few alphas; four make anything.
void Fill(std::uint8_t* pixel, int kind, Source& source)
{
    const std::uint8_t byte = source.Next();
    const auto upper = static_cast<std::uint8_t>(byte & 0xF0), lower = static_cast<std::uint8_t>(byte << 4);
    switch (kind % 6) {
    case 0: std::fill_n(pixel, 3, byte), pixel[3] = 255; break;
    case 1: std::fill_n(pixel, 3, upper), pixel[3] = static_cast<std::uint8_t>(lower | 15); break;
    case 2: pixel[0] = upper, pixel[1] = lower, pixel[2] = 7, pixel[3] = 255; break;
    case 3: pixel[0] = upper, pixel[1] = 9, pixel[2] = byte, pixel[3] = lower; break;
    case 4: pixel[0] = byte, pixel[1] = source.Next(), pixel[2] = source.Next(), pixel[3] = 255; break;
    default: std::generate_n(pixel, 4, [&source] { return source.Next(); });
    }
}

Bitmap Picture(imaging::Bytes head, imaging::Bytes rest)
{
    const bool large = head[1] >= 0xF0; // beyond what encoders take for small; seldom, for its time
    const int width = 1 + head[0] + 256 * (head[1] % 4), height = (1 + head[2] % 16) * (large ? 64 : 1);
    const int kind = head[3];
    Source source(rest);
    Bitmap picture = Bitmap::Uninitialised(width, height);
    std::uint8_t* const pixels = picture.Writable();
    bool opaque = true;
    for (std::size_t i = 0; i < picture.Stride() * static_cast<std::size_t>(height); i += 4) {
        Fill(pixels + i, kind, source);
        opaque = opaque && pixels[i + 3] == 255;
    }
    picture.Opaque(opaque && kind < 128); // not to know it is allowed
    return picture;
}

bool Same(const Bitmap& a, const Bitmap& b)
{
    if (a.Width() != b.Width() || a.Height() != b.Height())
        return false;
    const bool exact = imaging::CODEC.name == "PNG";
    return !exact || std::memcmp(a.Row(0), b.Row(0), a.Stride() * static_cast<std::size_t>(a.Height())) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kHead = 5;
    if (size < kHead)
        return 0;
    const Bitmap picture = Picture({ data, kHead }, { data + kHead, size - kHead });
    Memory file;
    imaging::CODEC.encode(picture, data[4] % 102 - 1, file);
    if (!Same(imaging::CODEC.decode(file.held, {}), picture))
        __builtin_trap();
    return 0;
}
