#include "imaging/Exif.h"

#include <bit>
#include <optional>

#include "imaging/Fault.h"
#include "imaging/bits/ByteReader.h"

namespace veltrane::imaging {

namespace {

constexpr std::uint16_t kMagic = 42;
constexpr std::uint16_t kOrientationTag = 0x0112;
enum FieldType : std::uint16_t { kByte = 1, kShort = 3, kLong = 4 };

std::optional<std::endian> ByteOrder(Bytes tiff)
{
    if (tiff.size() < 2 || tiff[0] != tiff[1])
        return std::nullopt;
    if (tiff[0] == 'I')
        return std::endian::little;
    return tiff[0] == 'M' ? std::optional(std::endian::big) : std::nullopt;
}

// The standard wants a SHORT; some cameras and scripts write the number in a BYTE or a LONG.
std::int64_t Value(ByteReader& in, std::uint16_t type)
{
    switch (type) {
    case kByte: return in.U8();
    case kShort: return in.U16();
    case kLong: return in.U32();
    default: return 0;
    }
}

// Entries behind the one looked for are never read: what is broken there does not matter.
std::int64_t OrientationTag(ByteReader in)
{
    in.Skip(2);
    if (in.U16() != kMagic)
        return 0;
    in.Seek(in.U32());
    for (int left = in.U16(); left > 0; --left) {
        ByteReader entry = in.Nested(12);
        if (entry.U16() != kOrientationTag)
            continue;
        const std::uint16_t type = entry.U16();
        return entry.U32() == 1 ? Value(entry, type) : 0;
    }
    return 0;
}

} // namespace

Orientation ExifOrientation(Bytes tiff) noexcept
{
    // Orientation is a hint: nothing that is wrong with it is a reason to lose the picture.
    try {
        const auto order = ByteOrder(tiff);
        const std::int64_t tag = order ? OrientationTag({ tiff, *order }) : 0;
        return tag >= 1 && tag <= 8 ? static_cast<Orientation>(tag) : Orientation::TopLeft;
    } catch (const Fault&) {
        return Orientation::TopLeft;
    }
}

} // namespace veltrane::imaging
