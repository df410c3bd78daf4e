// The readers of small untrusted things: an EXIF block, addresses of a drop, an ICC profile. The first byte
// chooses.

#include <string_view>

#include "platform/UriList.h"
#include "platform/codecs/Colour.h"
#include "platform/codecs/Exif.h"

using namespace veltrane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const codecs::Bytes rest(data + 1, size - 1);
    switch (data[0] % 3) {
    case 0: (void)codecs::ExifOrientation(rest); break;
    case 1: (void)LocalPath({ reinterpret_cast<const char*>(rest.data()), rest.size() }); break;
    default:
        if (const auto transform = codecs::ColourTransform::FromProfile(rest, codecs::Samples::Rgba8)) {
            std::uint8_t pixels[16] { 0, 128, 255, 255, 1, 2, 3, 4 };
            transform->Apply(pixels, pixels, 4);
        }
    }
    return 0;
}
