#include "platform/values/Text.h"

#include <string>

#include "platform/values/Exceptions.h"

namespace veltrane {

Text Int64::ToText(std::int64_t value, const Ref<Locale>& locale)
{
    if (locale)
        throw UnsupportedOperationException("écriture des nombres non prise en charge");
    return std::to_string(value).c_str();
}

} // namespace veltrane
