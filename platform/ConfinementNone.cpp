#include "platform/Confinement.h"

namespace veltrane {

bool Confine() noexcept
{
    return false;
}

} // namespace veltrane
