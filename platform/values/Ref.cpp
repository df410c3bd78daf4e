#include "platform/values/Ref.h"

#include "platform/values/Exceptions.h"

namespace veltrane {

void RaiseNilObject(const std::type_info&)
{
    throw NilObjectException();
}

} // namespace veltrane
