#include "imaging/png/Png.h"

#include <algorithm>

#include "imaging/png/Chunks.h"
#include "imaging/png/Decode.h"
#include "imaging/png/Encode.h"

namespace veltrane::imaging {

namespace {

bool Probe(Bytes head) noexcept
{
    return head.size() >= png::kSignature.size()
        && std::equal(png::kSignature.begin(), png::kSignature.end(), head.begin());
}

} // namespace

const Codec kPng { "PNG", Probe, png::Decode, png::Encode };

} // namespace veltrane::imaging
