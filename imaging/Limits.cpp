#include "imaging/Limits.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "imaging/Fault.h"
#include "imaging/pixels/Bitmap.h"

namespace veltrane::imaging {

namespace {

// The number in a one-line file of the kernel, such as memory.max; none for "max" or no such file.
std::optional<std::int64_t> NumberIn(const std::string& path)
{
    std::ifstream file(path);
    std::int64_t number = 0;
    if (!(file >> number))
        return std::nullopt;
    return number;
}

// Bytes that the kernel thinks can be taken without swapping.
std::optional<std::int64_t> FreeBytes()
{
    std::ifstream file("/proc/meminfo");
    for (std::string line; std::getline(file, line);) {
        constexpr std::string_view kKey = "MemAvailable:";
        if (line.starts_with(kKey))
            return std::stoll(line.substr(kKey.size())) * 1024;
    }
    return std::nullopt;
}

// The unified hierarchy's line in /proc/self/cgroup reads "0::/path".
std::string ControlGroup()
{
    std::ifstream file("/proc/self/cgroup");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("0::"))
            return "/sys/fs/cgroup" + line.substr(3);
    }
    return {};
}

std::optional<std::int64_t> GroupFreeBytes()
{
    const std::string group = ControlGroup();
    const auto most = NumberIn(group + "/memory.max");
    const auto used = NumberIn(group + "/memory.current");
    if (group.empty() || !most || !used)
        return std::nullopt;
    return std::max<std::int64_t>(*most - *used, 0);
}

} // namespace

Limits Limits::OfThisMachine()
{
    Limits limits;
    const auto machine = FreeBytes();
    const auto group = GroupFreeBytes();
    if (machine || group) {
        const std::int64_t free = std::min(machine.value_or(INT64_MAX), group.value_or(INT64_MAX));
        limits.maxBytes = free / 4 * 3;
    }
    return limits;
}

void Limits::Check(std::int64_t width, std::int64_t height, std::int64_t workingBytes) const
{
    if (width < 1 || height < 1)
        throw Fault(Fault::NoPixels);
    if (width > maxSide || height > maxSide)
        throw Fault(Fault::SideOutOfRange);
    const std::int64_t pixels = width * height * static_cast<std::int64_t>(Bitmap::kBytesPerPixel);
    if (workingBytes > maxBytes || pixels > maxBytes - workingBytes)
        throw Fault(Fault::PixelsOverLimit, std::to_string(width) + " × " + std::to_string(height));
}

} // namespace veltrane::imaging
