// Colour from files: an ICC profile, or what PNG tells of gamma and primaries. The last byte also chooses the
// samples, so that profiles serve as inputs as they are.

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include "imaging/colour/Colour.h"

using namespace veltrane;
using imaging::ColourTransform;
using imaging::Samples;

namespace {

constexpr std::array<std::pair<Samples, std::size_t>, 5> kSamples { {
    { Samples::Grey8, 1 },
    { Samples::Rgba8, 4 },
    { Samples::Rgba16, 8 },
    { Samples::Cmyk8, 4 },
    { Samples::Cmyk16, 8 },
} };

// Chunks count in hundred-thousandths; missing bytes are 0.
std::shared_ptr<const ColourTransform> FromChunks(imaging::Bytes chunks, Samples samples)
{
    std::array<std::uint32_t, 9> numbers {};
    if (!chunks.empty())
        std::memcpy(numbers.data(), chunks.data(), std::min(chunks.size(), sizeof numbers));
    const auto at = [&numbers](std::size_t index) {
        return imaging::Chromaticity { numbers[index] / 100'000.0, numbers[index + 1] / 100'000.0 };
    };
    return ColourTransform::FromGamma(
        numbers[0] / 100'000.0, imaging::Primaries { at(1), at(3), at(5), at(7) }, samples);
}

// Blocks of their own, so that a byte too many is seen; more pixels than any vector has lanes.
void Apply(const ColourTransform& transform, std::size_t bytesPerPixel)
{
    constexpr std::size_t kPixels = 67;
    std::vector<std::uint8_t> from(kPixels * bytesPerPixel), to(kPixels * 4);
    for (std::size_t i = 0; i < from.size(); ++i)
        from[i] = static_cast<std::uint8_t>(i * 37);
    transform.Apply(from.data(), to.data(), kPixels);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const imaging::Bytes file(data, size);
    const std::uint8_t choice = file.back();
    const auto [samples, bytesPerPixel] = kSamples[choice % kSamples.size()];
    const bool chunks = choice >= 128 && (samples == Samples::Rgba8 || samples == Samples::Rgba16);
    if (const auto transform
        = chunks ? FromChunks(file, samples) : ColourTransform::FromProfile(file, samples))
        Apply(*transform, bytesPerPixel);
    return 0;
}
