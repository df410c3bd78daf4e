#include "platform/process/Confinement.h"

namespace veltrane {

bool Confine() noexcept
{
    return false;
}

} // namespace veltrane
