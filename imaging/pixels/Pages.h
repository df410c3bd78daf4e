#pragma once

#include <cstddef>

namespace veltrane::imaging {

/// Zeroed memory straight from the system, which costs nothing before it is touched; the allocator may have
/// to clear what it recycles. `size` above 0. The caller's, to be given back. Null when there is not the
/// room.
[[nodiscard]] void* NewPages(std::size_t size) noexcept;

/// Gives back what NewPages gave for the same size.
void FreePages(void* memory, std::size_t size) noexcept;

/// Has the system give all pages of some memory at once, as far as it can: page by page, at the first touch
/// of each, costs twice as much or, on a guest of a machine that keeps the page tables itself, five times.
/// What the memory holds stays. A hint: nothing tells whether it was taken.
void TakePages(void* memory, std::size_t size) noexcept;

} // namespace veltrane::imaging
