#include "platform/Ref.h"

#include "platform/Exceptions.h"

namespace veltrane {

void RaiseNilObject(const std::type_info&)
{
    throw NilObjectException();
}

} // namespace veltrane
