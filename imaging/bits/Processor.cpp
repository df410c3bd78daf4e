#include "imaging/bits/Processor.h"

namespace veltrane::imaging {

namespace {

bool pretendsOld = false;

} // namespace

bool HasAvx2() noexcept
{
#ifdef __x86_64__
    static const bool has = __builtin_cpu_supports("avx2") != 0;
    return has && !pretendsOld;
#else
    return false;
#endif
}

bool HasBmi2() noexcept
{
#ifdef __x86_64__
    static const bool has = __builtin_cpu_supports("bmi2") != 0;
    return has && !pretendsOld;
#else
    return false;
#endif
}

OldProcessor::OldProcessor() noexcept
{
    pretendsOld = true;
}

OldProcessor::~OldProcessor()
{
    pretendsOld = false;
}

} // namespace veltrane::imaging
