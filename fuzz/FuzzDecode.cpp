// One source, a fuzz target for each format: built with CODEC=kPng, CODEC=kGif and so on.

#include CODEC_HEADER

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/codecs/Codec.h"
#include "platform/codecs/Fault.h"
#include "platform/codecs/Processor.h"

using namespace veltrane;

namespace {

/// Counts what an encoder writes.
class Nowhere final : public codecs::Sink {
public:
    void Write(codecs::Bytes bytes) override { written += bytes.size(); }
    std::size_t written = 0;
};

// Below what the fuzzer itself may use, so that an allocation past the limits shows.
constexpr codecs::Limits kSmall { .maxSide = 2048, .maxBytes = 40 << 20 };

/// The paths for new processors and for old ones must make the same pixels.
void CompareWithOldProcessors(codecs::Bytes file, const codecs::Bitmap& picture)
{
    const codecs::OldProcessor old;
    const codecs::Bitmap other = codecs::CODEC.decode(file, kSmall);
    if (other.Width() != picture.Width() || other.Height() != picture.Height())
        __builtin_trap();
    for (int y = 0; y < picture.Height(); ++y)
        if (std::memcmp(picture.Row(y), other.Row(y), picture.Stride()) != 0)
            __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const codecs::Bytes file(data, size);
    (void)codecs::CODEC.probe(file.first(std::min(size, codecs::kProbeBytes)));
    try {
        const codecs::Bitmap picture = codecs::CODEC.decode(file, kSmall);
        CompareWithOldProcessors(file, picture);
        if (codecs::CODEC.encode != nullptr) {
            Nowhere sink;
            codecs::CODEC.encode(picture, 80, sink);
        }
    } catch (const codecs::Fault&) {
    } catch (const std::bad_alloc&) {
        // The allowed refusals. Anything else escapes, and the fuzzer reports it.
    }
    return 0;
}
