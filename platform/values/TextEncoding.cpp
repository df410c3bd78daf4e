#include "platform/values/TextEncoding.h"

#include "platform/values/Exceptions.h"

namespace veltrane {

const Ref<TextEncoding>& Encodings::UTF8()
{
    static const Ref<TextEncoding> utf8 = New<TextEncoding>();
    return utf8;
}

String ConvertEncoding(const String& source, const Ref<TextEncoding>& target)
{
    if (!target)
        throw NilObjectException();
    return source;
}

} // namespace veltrane
