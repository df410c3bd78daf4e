#include "platform/codecs/pict/FontConfiguration.h"

#include <fontconfig/fontconfig.h>

namespace veltrane::codecs::pict {

void ReadFontConfiguration() noexcept
{
    FcInit();
}

} // namespace veltrane::codecs::pict
