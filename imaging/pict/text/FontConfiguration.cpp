#include "imaging/pict/text/FontConfiguration.h"

#include <fontconfig/fontconfig.h>

namespace veltrane::imaging::pict {

void ReadFontConfiguration() noexcept
{
    FcInit();
}

} // namespace veltrane::imaging::pict
