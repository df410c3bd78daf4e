#include "tests/support/FaultyCalls.h"

namespace veltrane::tests {

bool FaultyCalls::Fails()
{
    if (++made != nth)
        return false;
    Meet();
    errno = error;
    return true;
}

int FaultyCalls::OpenUnnamed(int d)
{
    if (unnamed == Unnamed::Yes)
        return Fails() ? -1 : FileCalls::OpenUnnamed(d);
    errno = EOPNOTSUPP;
    return -1;
}

ssize_t FaultyCalls::Write(int f, const void* b, std::size_t n)
{
    return Fails() ? -1 : FileCalls::Write(f, b, n > 1 ? n / 2 : n);
}

int FaultyCalls::Sync(int)
{
    const bool fails = Fails();
    mustBeTold = mustBeTold || fails;
    return fails ? -1 : 0;
}

int FaultyCalls::Close(int f)
{
    const bool fails = Fails();
    mustBeTold = mustBeTold || (fails && f == duplicate);
    const int result = FileCalls::Close(f); // the system closes a descriptor also when it tells a failure
    if (fails)
        errno = error;
    return fails ? -1 : result;
}

int FaultyCalls::Rename(int d, const char* a, const char* b)
{
    return Fails() ? -1 : FileCalls::Rename(d, a, b);
}

int FaultyCalls::Remove(int d, const char* n)
{
    const bool fails = Fails();
    mayLeaveAName = mayLeaveAName || fails;
    return fails ? -1 : FileCalls::Remove(d, n);
}

int FaultyCalls::StatName(int d, const char* n, struct stat& s)
{
    return Fails() ? -1 : FileCalls::StatName(d, n, s);
}

ssize_t FaultyCalls::ReadLink(const char* p, char* t, std::size_t n)
{
    return Fails() ? -1 : FileCalls::ReadLink(p, t, n);
}

} // namespace veltrane::tests
