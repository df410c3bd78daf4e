#pragma once

#include "platform/values/Ref.h"
#include "platform/values/String.h"

namespace veltrane {

/// Names a character encoding. There is one, UTF-8, because all text is kept in it.
class TextEncoding final : public Counted { };

struct Encodings {
    /// UTF-8; the same object each time.
    [[nodiscard]] static const Ref<TextEncoding>& UTF8();
};

/// The same characters in the target encoding. To UTF-8, bytes that are no valid UTF-8 stay as they are.
/// Raises NilObjectException when `target` is nil.
[[nodiscard]] String ConvertEncoding(const String& source, const Ref<TextEncoding>& target);

} // namespace veltrane
