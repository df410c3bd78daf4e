#include "imaging/jpeg/Metadata.h"

#include <algorithm>
#include <string_view>

#include "imaging/Exif.h"

namespace veltrane::imaging::jpeg {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kExif
    = "Exif\0"sv; // followed by a byte of padding, which some encoders do not write as 0
constexpr std::string_view kIcc
    = "ICC_PROFILE\0"sv; // followed by the part's number and the number of parts, a byte each

bool Begins(Bytes segment, std::string_view with)
{
    return segment.size() >= with.size() && std::ranges::equal(segment.first(with.size()), with);
}

} // namespace

void Metadata::AddApp1(Bytes segment) noexcept
{
    if (sawExif || segment.size() <= kExif.size() || !Begins(segment, kExif))
        return;
    sawExif = true;
    orientation = ExifOrientation(segment.subspan(kExif.size() + 1));
}

void Metadata::AddApp2(Bytes segment) noexcept
{
    constexpr std::size_t kHead = kIcc.size() + 2;
    if (partCount == kMostParts || segment.size() < kHead || !Begins(segment, kIcc))
        return;
    parts[partCount++] = { segment[kIcc.size()], segment[kIcc.size() + 1], segment.subspan(kHead) };
}

const Metadata::Part* Metadata::Find(int number) const noexcept
{
    const auto* const end = parts.begin() + partCount;
    const auto* const found
        = std::find_if(parts.begin(), end, [&](const Part& p) { return p.number == number; });
    return found == end ? nullptr : found;
}

std::vector<std::uint8_t> Metadata::Profile() const
{
    std::vector<std::uint8_t> whole;
    const int count = partCount == 0 ? 0 : parts[0].count;
    for (int number = 1; number <= count; ++number) {
        const Part* const part = Find(number);
        if (part == nullptr)
            return {};
        whole.insert(whole.end(), part->bytes.begin(), part->bytes.end());
    }
    return whole;
}

} // namespace veltrane::imaging::jpeg
