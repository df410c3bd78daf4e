#pragma once

#include <new>

#include "imaging/Fault.h"
#include "platform/values/Exceptions.h"

namespace veltrane {

/// What the user reads when memory runs out while a picture is drawn.
inline constexpr const char* kNoMemoryToDraw = "mémoire insuffisante pour l'aperçu";

/// Raises what the seam says of the fault: OutOfMemoryException for a lack of memory, OutOfBoundsException
/// for a side that is too long, else UnsupportedFormatException; the message is in the user's words.
[[noreturn]] void RaiseFault(const imaging::Fault& fault);

/// Runs `step`, which works on pixels, and gives what it gives. Every operation of the seam that does so goes
/// through here: a Fault is raised as above, std::bad_alloc as OutOfMemoryException with `noMemory`.
template<class Step>
decltype(auto) WithPixels(const Step& step, const char* noMemory = "mémoire insuffisante pour cette image")
{
    try {
        return step();
    } catch (const imaging::Fault& fault) {
        RaiseFault(fault);
    } catch (const std::bad_alloc&) {
        throw OutOfMemoryException(noMemory);
    }
}

} // namespace veltrane
