#pragma once

#include <optional>

#include "imaging/jpeg/OnWhite.h"
#include "imaging/jpeg/Tables.h"
#include "imaging/jpeg/Writer.h"

namespace veltrane::imaging::jpeg {

/// Tables for writing `picture`, whole, in this form, from pieces spread over it: about as good as those that
/// a walk over the whole picture gives, for a small part of its cost. None for a picture so small that the
/// walk is cheap. `form.tables` is not looked at. Raises what Writer raises.
[[nodiscard]] std::optional<Tables> SampledTables(const OnWhite& picture, const Form& form);

} // namespace veltrane::imaging::jpeg
