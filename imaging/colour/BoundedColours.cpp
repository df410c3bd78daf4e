#include "imaging/colour/BoundedColours.h"

#include <cstdlib>

#include <lcms2_plugin.h>

namespace veltrane::imaging {

namespace {

// The tables of a press, sixteen bits for each of its bytes in the file, and as much again while they are
// linked. The library itself stops at 512 MiB, which a profile of some hundred bytes can claim: it makes a
// table's room before it looks for the table.
constexpr cmsUInt32Number kMostAtOnce = cmsUInt32Number { 64 } << 20;

void* Allocate(cmsContext, cmsUInt32Number size)
{
    return size <= kMostAtOnce ? std::malloc(size) : nullptr;
}

void* Reallocate(cmsContext, void* memory, cmsUInt32Number size)
{
    return size <= kMostAtOnce ? std::realloc(memory, size) : nullptr;
}

void Free(cmsContext, void* memory)
{
    std::free(memory);
}

cmsContext Create()
{
    cmsPluginMemHandler memory {};
    memory.base.Magic = cmsPluginMagicNumber;
    memory.base.ExpectedVersion = 2000; // the handlers' form, the same since 2.0
    memory.base.Type = cmsPluginMemHandlerSig;
    memory.MallocPtr = Allocate;
    memory.FreePtr = Free;
    memory.ReallocPtr = Reallocate;
    return cmsCreateContext(&memory, nullptr);
}

} // namespace

_cmsContext_struct* BoundedColours()
{
    static const cmsContext context = Create(); // never deleted: transforms may be kept until the very end
    return context;
}

} // namespace veltrane::imaging
