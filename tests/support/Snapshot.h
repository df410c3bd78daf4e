#pragma once

#include <map>
#include <string>

namespace veltrane::tests {

/// What lies in a folder and below, by path: kind, permissions, node, time of the last change and content of
/// each file, link and folder. Links are not followed; of a folder only its kind and permissions.
using Snapshot = std::map<std::string, std::string>;

[[nodiscard]] Snapshot Look(const std::string& folder);

/// As Look, without the names that a killed save leaves for the next one to take away.
[[nodiscard]] Snapshot LookPastLeftOvers(const std::string& folder);

} // namespace veltrane::tests
