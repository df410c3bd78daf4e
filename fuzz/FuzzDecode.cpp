// One source, a fuzz target for each format: built with CODEC=kPng, CODEC=kGif and so on.

#include CODEC_HEADER

#include <algorithm>
#include <cstring>
#include <new>

#include "imaging/Codec.h"
#include "imaging/Fault.h"
#include "imaging/bits/Processor.h"

using namespace veltrane;

namespace {

/// Counts what an encoder writes.
class Nowhere final : public imaging::Sink {
public:
    void Write(imaging::Bytes bytes) override { written += bytes.size(); }
    std::size_t written = 0;
};

// Below what the fuzzer itself may use, so that an allocation past the limits shows.
constexpr imaging::Limits kSmall { .maxSide = 2048, .maxBytes = 40 << 20 };

/// The paths for new processors and for old ones must make the same pixels.
void CompareWithOldProcessors(imaging::Bytes file, const imaging::Bitmap& picture)
{
    const imaging::OldProcessor old;
    const imaging::Bitmap other = imaging::CODEC.decode(file, kSmall);
    if (other.Width() != picture.Width() || other.Height() != picture.Height())
        __builtin_trap();
    for (int y = 0; y < picture.Height(); ++y)
        if (std::memcmp(picture.Row(y), other.Row(y), picture.Stride()) != 0)
            __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const imaging::Bytes file(data, size);
    (void)imaging::CODEC.probe(file.first(std::min(size, imaging::kProbeBytes)));
    try {
        const imaging::Bitmap picture = imaging::CODEC.decode(file, kSmall);
        CompareWithOldProcessors(file, picture);
        if (imaging::CODEC.encode != nullptr) {
            Nowhere sink;
            imaging::CODEC.encode(picture, 80, sink);
        }
    } catch (const imaging::Fault&) {
    } catch (const std::bad_alloc&) {
        // The allowed refusals. Anything else escapes, and the fuzzer reports it.
    }
    return 0;
}
