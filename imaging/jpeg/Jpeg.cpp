#include "imaging/jpeg/Jpeg.h"

#include "imaging/jpeg/Decode.h"
#include "imaging/jpeg/Encode.h"

namespace veltrane::imaging {

namespace {

// SOI and the 0xFF of the next marker: T.81, B.1.1.3. No other format that is read begins so.
bool Probe(Bytes head) noexcept
{
    return head.size() >= 2 && head[0] == 0xFF && head[1] == 0xD8;
}

} // namespace

const Codec kJpeg { "JPEG", Probe, jpeg::Decode, jpeg::Encode };

} // namespace veltrane::imaging
