#include "platform/codecs/Codec.h"

#include <algorithm>
#include <array>

#include "platform/codecs/gif/Gif.h"
#include "platform/codecs/jpeg/Jpeg.h"
#include "platform/codecs/pict/Pict.h"
#include "platform/codecs/png/Png.h"
#include "platform/codecs/tiff/Tiff.h"

namespace veltrane::codecs {

namespace {

// PICT last: its mark stands behind bytes that may be anything, so that a file of another format can hold
// it by accident.
constexpr std::array kCodecs {
    &kJpeg,
    &kPng,
    &kGif,
    &kTiff,
    &kPict,
};

const Codec* fallback = nullptr;

} // namespace

std::span<const Codec* const> All() noexcept
{
    return kCodecs;
}

const Codec* Find(Bytes head) noexcept
{
    const Bytes seen = head.first(std::min(head.size(), kProbeBytes));
    for (const Codec* codec : kCodecs) {
        if (codec->probe(seen))
            return codec;
    }
    return fallback != nullptr && fallback->probe(seen) ? fallback : nullptr;
}

void RegisterFallback(const Codec* codec) noexcept
{
    fallback = codec;
}

} // namespace veltrane::codecs
