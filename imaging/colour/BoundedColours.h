#pragma once

struct _cmsContext_struct;

namespace veltrane::imaging {

/// A context of Little CMS in which no profile makes it ask for more than 64 MiB at once: what does not fit
/// fails as if the machine had no room. Lives as long as the program; for the main thread's use.
[[nodiscard]] _cmsContext_struct* BoundedColours();

} // namespace veltrane::imaging
