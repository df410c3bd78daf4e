#pragma once

#include <string>

namespace veltrane {

constexpr int kMostLinks = 40; ///< that one path may lead over, as the kernel counts them

/// Where the symbolic link at the absolute `path` leads, one step, as an absolute path; empty when there is
/// no link. Raises IOException when the system does not say.
[[nodiscard]] std::string LinkTarget(const std::string& path);

/// Where a chain of links ends, whether or not something lies there; `path` itself when it is no link.
/// Raises IOException for links that go round in circles, and as LinkTarget does.
[[nodiscard]] std::string EndOfLinks(std::string path);

} // namespace veltrane
