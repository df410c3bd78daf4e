#include "imaging/tiff/Directory.h"

#include <algorithm>
#include <array>
#include <vector>

#include "imaging/Fault.h"
#include "imaging/bits/ByteReader.h"

namespace veltrane::imaging {

namespace {

enum Tag : std::uint16_t {
    kNewSubfileType = 254,
    kSubfileType = 255,
    kWidth = 256,
    kHeight = 257,
    kPhotometric = 262,
    kSubDirectories = 330,
    kExtraSamples = 338,
};

// Pages looked at in search of a full-size one; a chain that bites its tail ends here too.
constexpr int kMostPages = 32;

struct Entry {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    std::uint64_t value = 0; // the first number where it stands in the entry itself, else where they begin
};

struct Directory {
    TiffDirectory page;
    bool fullSize = true;
    bool shown = true; // false for what a sensor saw, which is no picture yet
    std::vector<std::uint64_t> children;
    std::uint64_t next = 0;
};

// Bytes of one number of that type; 0 for types that nobody knows (TIFF 6.0, section 2; BigTIFF).
std::uint64_t SizeOfType(std::uint16_t type)
{
    constexpr std::array<std::uint8_t, 19> kSizes { 0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8 };
    return type < kSizes.size() ? kSizes[type] : 0;
}

std::int64_t Side(std::uint64_t value)
{
    return static_cast<std::int64_t>(std::min<std::uint64_t>(value, INT64_MAX));
}

// Walks directories by the two layouts: classic and Big differ in the width of counts and offsets alone.
class Walker {
public:
    explicit Walker(Bytes bytes)
        : file(bytes), order(!bytes.empty() && bytes[0] == 'M' ? std::endian::big : std::endian::little)
    {
        ByteReader in(file, order);
        in.Skip(2);
        big = in.U16() == 43;
        if (big)
            in.Skip(4);
        first = Offset(in);
    }

    [[nodiscard]] std::uint64_t First() const noexcept { return first; }

    [[nodiscard]] Directory Read(std::uint64_t offset) const
    {
        ByteReader in = At(offset);
        const std::uint64_t entries = big ? U64(in) : in.U16();
        Directory directory;
        directory.page.offset = offset;
        std::uint64_t room = 2 * file.size() + kSlack;
        for (std::uint64_t i = 0; i < entries; ++i) {
            const Entry entry = ReadEntry(in);
            const std::uint64_t size = SizeOfType(entry.type);
            if (size != 0 && entry.count > room / size)
                throw Fault(Fault::TiffDamaged);
            room -= size * entry.count;
            Note(entry, directory);
        }
        // The chain's end may be cut off; the page before it is whole.
        if (in.Remaining() >= (big ? 8u : 4u))
            directory.next = Offset(in);
        return directory;
    }

private:
    static constexpr std::uint64_t kSlack = 65'536;

    [[nodiscard]] std::uint64_t U64(ByteReader& in) const
    {
        const std::uint64_t a = in.U32(), b = in.U32();
        return order == std::endian::big ? a << 32 | b : b << 32 | a;
    }
    [[nodiscard]] std::uint64_t Offset(ByteReader& in) const { return big ? U64(in) : in.U32(); }

    [[nodiscard]] ByteReader At(std::uint64_t offset) const
    {
        ByteReader in(file, order);
        in.Seek(offset);
        return in;
    }

    [[nodiscard]] Entry ReadEntry(ByteReader& in) const
    {
        Entry entry { in.U16(), in.U16(), 0, 0 };
        entry.count = Offset(in);
        ByteReader field = in.Nested(big ? 8 : 4);
        entry.value = FirstNumber(entry, field);
        return entry;
    }

    // Short numbers stand at the left of their field.
    [[nodiscard]] std::uint64_t FirstNumber(const Entry& entry, ByteReader& field) const
    {
        const std::uint64_t size = SizeOfType(entry.type);
        if (size == 0 || entry.count > field.Remaining() / size)
            return Offset(field);
        switch (size) {
        case 1: return field.U8();
        case 2: return field.U16();
        case 4: return field.U32();
        default: return Offset(field);
        }
    }

    void Note(const Entry& entry, Directory& directory) const
    {
        constexpr std::uint64_t kReduced = 1, kMask = 4, kOldReduced = 2;
        constexpr std::uint64_t kSensorArray = 32'803, kLinearRaw = 34'892;
        switch (entry.tag) {
        case kNewSubfileType: directory.fullSize &= (entry.value & (kReduced | kMask)) == 0; break;
        case kSubfileType: directory.fullSize &= entry.value != kOldReduced; break;
        case kWidth: directory.page.width = Side(entry.value); break;
        case kHeight: directory.page.height = Side(entry.value); break;
        case kPhotometric: directory.shown = entry.value != kSensorArray && entry.value != kLinearRaw; break;
        case kSubDirectories: directory.children = Children(entry); break;
        case kExtraSamples: directory.page.tellsExtraSamples = true; break;
        default: break;
        }
    }

    [[nodiscard]] std::vector<std::uint64_t> Children(const Entry& entry) const
    {
        if (entry.count <= 1)
            return { entry.value };
        std::vector<std::uint64_t> children;
        try {
            ByteReader in = At(entry.value);
            for (std::uint64_t i = 0; i < entry.count && i < kMostPages; ++i)
                children.push_back(SizeOfType(entry.type) == 8 ? U64(in) : in.U32());
        } catch (const Fault&) {
            // Pages beside the main ones: what can be found of them is enough.
        }
        return children;
    }

    Bytes file;
    std::endian order;
    bool big = false;
    std::uint64_t first = 0;
};

bool IsFullPicture(const Directory& directory)
{
    return directory.fullSize && directory.shown;
}

// The first full picture behind `first`, in its chain and then among its children; `first` itself when
// there is none, or the search runs into damage.
Directory SearchFrom(const Walker& walker, const Directory& first)
{
    try {
        Directory at = first;
        for (int i = 0; i < kMostPages && at.next != 0; ++i) {
            at = walker.Read(at.next);
            if (IsFullPicture(at))
                return at;
        }
        for (const std::uint64_t child : first.children) {
            at = walker.Read(child);
            if (IsFullPicture(at))
                return at;
        }
    } catch (const Fault&) {
        return first;
    }
    return first;
}

} // namespace

TiffDirectory FindPage(Bytes file)
{
    try {
        const Walker walker(file);
        const Directory first = walker.Read(walker.First());
        return IsFullPicture(first) ? first.page : SearchFrom(walker, first).page;
    } catch (const Fault& fault) {
        // The reader speaks of any file.
        throw Fault(fault.code == Fault::Incomplete ? Fault::TiffIncomplete : Fault::TiffDamaged);
    }
}

} // namespace veltrane::imaging
