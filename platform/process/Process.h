#pragma once

namespace veltrane {

/// Makes the process one that a careless start or a limit of the system cannot have lose a file. Call it
/// before anything is opened.
///
/// Standard streams that were closed lead to the null device: else the next file to be opened would take such
/// a number, and what a library prints would be written into it. A file that outgrows the user's limit, and a
/// reader of our output that has gone, are failures of the call and no longer the process's end.
void PrepareProcess() noexcept;

/// Tells the C library's allocator what this program is like, where it can be told: one thread does the work,
/// and large buffers of one picture are wanted again for the next, so that giving them back costs twice.
void PrepareAllocator() noexcept;

} // namespace veltrane
