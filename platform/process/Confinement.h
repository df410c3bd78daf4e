#pragma once

namespace veltrane {

/// Gives up, for good and for every thread, what converting pictures in a window never needs: other
/// programs and processes (to start, trace, read or signal them), sockets but local ones, mounts, name
/// spaces and the kernel's own doors. Denied calls fail with EACCES, so that libraries that merely try go
/// on without. docs/confinement.md says what remains.
///
/// To be called once, when the toolkit stands and before any file is looked at. False where the system
/// knows no such thing or refuses it; then nothing has changed.
[[nodiscard]] bool Confine() noexcept;

} // namespace veltrane
