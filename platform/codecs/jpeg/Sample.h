#pragma once

#include <optional>

#include "platform/codecs/jpeg/OnWhite.h"
#include "platform/codecs/jpeg/Tables.h"
#include "platform/codecs/jpeg/Writer.h"

namespace veltrane::codecs::jpeg {

/// Tables for writing `picture`, whole, in this form, from pieces spread over it: about as good as those that
/// a walk over the whole picture gives, for a small part of its cost. None for a picture so small that the
/// walk is cheap. `form.tables` is not looked at. Raises what Writer raises.
[[nodiscard]] std::optional<Tables> SampledTables(const OnWhite& picture, const Form& form);

} // namespace veltrane::codecs::jpeg
