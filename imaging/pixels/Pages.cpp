#include "imaging/pixels/Pages.h"

#include <cerrno>
#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace veltrane::imaging {

void* NewPages(std::size_t size) noexcept
{
    void* const pages = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

void FreePages(void* memory, std::size_t size) noexcept
{
    munmap(memory, size);
}

void TakePages(void* memory, std::size_t size) noexcept
{
#ifdef MADV_POPULATE_WRITE
    const int error = errno;
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (begin + page - 1) / page * page;
    const std::uintptr_t end = (begin + size) / page * page;
    if (first < end)
        madvise(reinterpret_cast<void*>(first), end - first, MADV_POPULATE_WRITE);
    errno = error;
#else
    static_cast<void>(memory);
    static_cast<void>(size);
#endif
}

} // namespace veltrane::imaging
