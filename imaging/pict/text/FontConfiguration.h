#pragma once

namespace veltrane::imaging::pict {

/// Reads which fonts this machine has and how they stand in for each other, once for the process: whoever
/// needs a font next, the toolkit included, finds it read. On any thread; others wait for it or read it
/// themselves. A machine without a configuration is left as it is.
void ReadFontConfiguration() noexcept;

} // namespace veltrane::imaging::pict
