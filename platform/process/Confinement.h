#pragma once

namespace veltrane {

/// Puts this process into a Landlock domain of its own, for good. From then on the kernel refuses it and
/// every thread and process that it starts later what a debugger may do with a process outside: reading and
/// writing memory, reading the environment, taking descriptors. From Landlock ABI 6 on it also refuses to
/// signal one. Access to files stays as it is.
///
/// Call it before any thread is started: a thread that runs already stays outside. Returns false if the
/// kernel has no Landlock or refuses.
[[nodiscard]] bool EnterDomain() noexcept;

/// Gives up, for good and for every thread, what converting pictures in a window never needs: other
/// programs and processes (to start, trace, signal or hamper them), sockets but local ones, mounts, name
/// spaces, the kernel's own doors, and calls that are newer than the filter. Denied calls fail with EACCES,
/// EPERM or ENOSYS, so that libraries that merely try go on without. docs/confinement.md says what remains.
///
/// Call it once, after the toolkit has opened the display and before any file is looked at. Returns false if
/// the system has no such filters or refuses them.
[[nodiscard]] bool Confine() noexcept;

} // namespace veltrane
