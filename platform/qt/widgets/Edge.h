#pragma once

#include <functional>

namespace veltrane::qt {

/// The edge between Qt and our code: runs `routine`, and lets nothing out. What it raises is a fault of the
/// program: it is written to the error stream and ends the run.
void AtEdge(const std::function<void()>& routine) noexcept;

} // namespace veltrane::qt
