#include "imaging/pict/stills/Still.h"

#include <algorithm>
#include <array>

#include "imaging/Codec.h"
#include "imaging/Fault.h"
#include "imaging/pict/Pict.h"
#include "imaging/pict/drawing/Palettes.h"
#include "imaging/pict/drawing/PixelMap.h"
#include "imaging/pict/stills/StillDecoders.h"
#include "imaging/pict/text/MacRoman.h"

namespace veltrane::imaging::pict {

namespace {

constexpr std::size_t kDescription = 86; ///< the bytes that every description has
constexpr std::size_t kNameRoom = 31;

constexpr std::uint32_t Type(const char (&name)[5]) noexcept
{
    std::uint32_t type = 0;
    for (int i = 0; i < 4; ++i)
        type = type << 8 | static_cast<std::uint8_t>(name[i]);
    return type;
}

struct Decoder {
    std::uint32_t type;
    void (*decode)(const Still& still, StillPixels& pixels);
};

constexpr std::array kDecoders = std::to_array<Decoder>({
    { Type("raw "), DecodeRaw },
    { Type("cvid"), DecodeCinepak },
    { Type("rpza"), DecodeRoadPizza },
    { Type("rle "), DecodeAnimation },
    { Type("smc "), DecodeGraphics },
    { Type("8BPS"), DecodePlanar },
});

std::string ReadName(ByteReader& in)
{
    const std::size_t length = std::min<std::size_t>(in.U8(), kNameRoom);
    const Bytes room = in.Take(kNameRoom);
    return { room.begin(), room.begin() + static_cast<std::ptrdiff_t>(length) };
}

// A table number of 0: the still brings its own, in its description's tail. Others name the system's.
std::vector<Rgba> ReadPalette(ByteReader& tail, int depth, int table)
{
    if (table == 0 && tail.Remaining() >= 16)
        return ReadColourTable(tail);
    return depth > 32 ? GreyPalette(depth - 32) : SystemPalette(depth);
}

std::string Characters(std::uint32_t type)
{
    std::string four;
    for (int shift = 24; shift >= 0; shift -= 8)
        four += FromMacRoman(static_cast<std::uint8_t>(type >> shift));
    return four;
}

[[noreturn]] void Refuse(const Still& still)
{
    std::string name;
    for (const char c : still.compressor)
        name += FromMacRoman(static_cast<std::uint8_t>(c));
    throw Fault(Fault::QuickTimeCompressionUnknown, name.empty() ? Characters(still.type) : name);
}

// No compressor here makes more than a thousand pixels of a byte; what promises more only asks for memory.
void CheckPlausible(const Still& still, const Limits& limits)
{
    limits.Check(still.width, still.height);
    constexpr std::int64_t kMostPixelsOfAByte = 1024;
    const std::int64_t most = static_cast<std::int64_t>(still.data.size()) * kMostPixelsOfAByte;
    if (std::int64_t { still.width } * still.height > most)
        throw Fault(Fault::QuickTimeIncomplete);
}

} // namespace

Still ReadStill(ByteReader& in)
{
    const std::size_t size = in.U32();
    if (size < kDescription)
        throw Fault(Fault::QuickTimeDescriptionDamaged);
    ByteReader description = in.Nested(size - 4);
    Still still;
    still.type = description.U32();
    description.Skip(24); // reserved, versions, vendor, qualities
    still.width = description.U16();
    still.height = description.U16();
    description.Skip(8); // resolution
    const std::size_t dataSize = description.U32();
    description.Skip(2); // frame count
    still.compressor = ReadName(description);
    still.depth = description.U16();
    const int table = description.I16();
    if (still.depth <= 8 || still.depth > 32)
        still.palette = ReadPalette(description, still.depth, table);
    // Some writers leave the size at zero: then the data is what is left.
    still.data = in.Take(dataSize == 0 ? in.Remaining() : dataSize);
    return still;
}

Bitmap DecodeStill(const Still& still, const Limits& limits)
{
    const auto decoder = std::ranges::find(kDecoders, still.type, &Decoder::type);
    if (decoder != kDecoders.end()) {
        CheckPlausible(still, limits);
        StillPixels pixels(still.width, still.height);
        decoder->decode(still, pixels);
        return pixels.Finish();
    }
    const Codec* const codec = Find(still.data.first(std::min(still.data.size(), kProbeBytes)));
    if (codec != nullptr && codec != &kPict) // pictures within pictures could go on for ever
        return codec->decode(still.data, limits);
    if (LooksLikeBmp(still.data))
        return DecodeBmp(still.data, limits);
    Refuse(still);
}

} // namespace veltrane::imaging::pict
