#include "platform/codecs/png/Png.h"

#include <algorithm>

#include "platform/codecs/png/Chunks.h"
#include "platform/codecs/png/Decode.h"
#include "platform/codecs/png/Encode.h"

namespace veltrane::codecs {

namespace {

bool Probe(Bytes head) noexcept
{
    return head.size() >= png::kSignature.size()
        && std::equal(png::kSignature.begin(), png::kSignature.end(), head.begin());
}

} // namespace

const Codec kPng { "PNG", Probe, png::Decode, png::Encode };

} // namespace veltrane::codecs
