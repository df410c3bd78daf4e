#include "platform/codecs/pict/Pict.h"

#include <new>

#include "platform/Exceptions.h"
#include "platform/codecs/Codec.h"
#include "platform/codecs/pict/Header.h"
#include "platform/codecs/pict/Player.h"

namespace veltrane::codecs {

namespace {

// What drawing needs beside the pixels: rows, regions and patterns, all bounded.
constexpr std::int64_t kWorkingBytes = 32 << 20;

Info ReadInfo(Bytes file, const Limits& limits)
{
    const pict::Header header = pict::ReadHeader(file);
    limits.Check(header.frame.Width(), header.frame.Height(), kWorkingBytes);
    return { header.frame.Width(), header.frame.Height() };
}

Bitmap Decode(Bytes file, const Limits& limits)
{
    try {
        (void)ReadInfo(file, limits);
        return pict::Play(file, pict::ReadHeader(file), limits);
    } catch (const std::bad_alloc&) {
        throw OutOfMemoryException("mémoire insuffisante pour cette image");
    }
}

} // namespace

constexpr Codec kPict { "PICT", pict::LooksLikePicture, ReadInfo, Decode, nullptr };

} // namespace veltrane::codecs
