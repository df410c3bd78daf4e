// The reader of EXIF blocks, on any bytes.

#include "imaging/Exif.h"

using namespace veltrane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const int orientation = static_cast<int>(imaging::ExifOrientation({ data, size }));
    if (orientation < 1 || orientation > 8)
        __builtin_trap(); // no caller asks again
    return 0;
}
