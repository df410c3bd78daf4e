#include "imaging/pict/drawing/PixelMap.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "imaging/Fault.h"

namespace veltrane::imaging::pict {

namespace {

constexpr int kPixMapFlag = 0x8000; ///< in the row bytes
constexpr int kDeviceTable = 0x8000; ///< in a table's flags: entries count by place, not by value
constexpr std::size_t kColours = 256;

struct Entry {
    std::size_t value;
    Rgba colour;
};

void ReadPixMapFields(ByteReader& in, PixelMap& map)
{
    map.blackAndWhite = false;
    in.Skip(2); // version
    map.packType = in.I16();
    in.Skip(12); // packed size, horizontal and vertical resolution
    in.Skip(2); // pixel type: told by the depth
    map.pixelSize = in.I16();
    map.components = in.I16() == 4 ? 4 : 3;
    in.Skip(14); // component size, plane offset, table, reserved
}

void Check(const PixelMap& map)
{
    constexpr std::array<int, 6> kDepths { 1, 2, 4, 8, 16, 32 };
    if (std::ranges::find(kDepths, map.pixelSize) == kDepths.end())
        throw Fault(Fault::PictPixelSizeUnknown);
    const std::int64_t bits = std::int64_t { map.bounds.Width() } * map.pixelSize;
    if (map.bounds.Empty() || (bits + 7) / 8 > map.rowBytes)
        throw Fault(Fault::PictBoundsInconsistent);
}

// Some writers leave the values of an indexed table at zero or repeat them: then only the place can be
// meant, since two colours cannot have one number.
bool ValuesAreNumbers(const std::vector<Entry>& entries)
{
    std::array<bool, kColours> seen {};
    for (const Entry& entry : entries) {
        if (entry.value >= kColours || seen[entry.value])
            return false;
        seen[entry.value] = true;
    }
    return true;
}

} // namespace

PixelMap ReadPixelMap(ByteReader& in, MapKind kind)
{
    PixelMap map;
    const int flags = in.U16();
    map.rowBytes = flags & ~kPixMapFlag;
    map.bounds = ReadRect(in);
    if (kind == MapKind::Pixels || (flags & kPixMapFlag) != 0)
        ReadPixMapFields(in, map);
    Check(map);
    return map;
}

std::vector<Rgba> ReadColourTable(ByteReader& in)
{
    in.Skip(4); // seed
    const bool device = (in.U16() & kDeviceTable) != 0;
    const std::size_t count = std::size_t { in.U16() } + 1;
    if (count > kColours)
        throw Fault(Fault::PictColorTableDamaged);
    std::vector<Entry> entries(count);
    for (Entry& entry : entries) {
        entry.value = in.U16();
        entry.colour = ReadRgbColor(in);
    }
    const bool byPlace = device || !ValuesAreNumbers(entries);
    std::vector<Rgba> palette(kColours, kBlack);
    for (std::size_t i = 0; i < count; ++i)
        palette[byPlace ? i : entries[i].value] = entries[i].colour;
    return palette;
}

std::vector<Rgba> BlackAndWhitePalette()
{
    std::vector<Rgba> palette(kColours, kBlack);
    palette[0] = kWhite;
    return palette;
}

} // namespace veltrane::imaging::pict
