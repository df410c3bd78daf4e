#pragma once

#include <optional>

#include "imaging/jpeg/OnWhite.h"
#include "imaging/jpeg/Tables.h"
#include "imaging/jpeg/Writer.h"

namespace veltrane::imaging::jpeg {

/// Huffman tables for writing `picture` with the options `form`, from a sample of its blocks: about as good
/// as those from the whole picture, for a small part of the time. Empty for a picture so small that the
/// library makes the tables from all of it. Ignores `form.tables`. Raises what Writer raises.
[[nodiscard]] std::optional<Tables> SampledTables(const OnWhite& picture, const Form& form);

} // namespace veltrane::imaging::jpeg
