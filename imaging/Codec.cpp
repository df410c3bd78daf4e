#include "imaging/Codec.h"

#include <algorithm>
#include <array>

#include "imaging/gif/Gif.h"
#include "imaging/jpeg/Jpeg.h"
#include "imaging/pict/Pict.h"
#include "imaging/png/Png.h"
#include "imaging/tiff/Tiff.h"

namespace veltrane::imaging {

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

} // namespace veltrane::imaging
