#pragma once

#include <string>

namespace veltrane::tests {

/// Names a parameterised test by its row's `name`.
inline constexpr auto kByName = [](const auto& row) { return std::string(row.param.name); };

} // namespace veltrane::tests
