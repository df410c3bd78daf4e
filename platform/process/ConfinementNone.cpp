#include "platform/process/Confinement.h"

namespace veltrane {

bool EnterDomain() noexcept
{
    return false;
}

bool Confine() noexcept
{
    return false;
}

} // namespace veltrane
