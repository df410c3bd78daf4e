#include "imaging/colour/SrgbProfile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace veltrane::imaging {

namespace {

constexpr std::size_t kMost = 500;
constexpr std::size_t kHeaderSize = 128;

constexpr std::uint32_t Tag(const char (&name)[5])
{
    std::uint32_t tag = 0;
    for (std::size_t i = 0; i < 4; ++i)
        tag = tag << 8 | static_cast<std::uint8_t>(name[i]);
    return tag;
}

// Grows at compile time; one byte too many is an error there.
struct Buffer {
    std::array<std::uint8_t, kMost> bytes {};
    std::size_t size = 0;

    constexpr void U32(std::uint32_t value)
    {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes[size++] = static_cast<std::uint8_t>(value >> shift);
    }
    constexpr void Words(std::initializer_list<std::uint32_t> values)
    {
        for (const std::uint32_t value : values)
            U32(value);
    }
    // s15Fixed16Numbers, as the integers they are stored as
    constexpr void Fixed(std::initializer_list<std::int32_t> values)
    {
        for (const std::int32_t value : values)
            U32(static_cast<std::uint32_t>(value));
    }
};

// multiLocalizedUnicodeType, ICC.1:2010, 10.13: one record, English, of at most four letters.
constexpr void Text(Buffer& out, std::initializer_list<char16_t> letters)
{
    constexpr std::uint32_t kRecord = 12, kEnglishUs = 0x656E'5553, kAt = 28;
    const auto length = static_cast<std::uint32_t>(2 * letters.size());
    out.Words({ Tag("mluc"), 0, 1, kRecord, kEnglishUs, length, kAt });
    for (const char16_t letter : letters) {
        out.bytes[out.size++] = static_cast<std::uint8_t>(letter >> 8);
        out.bytes[out.size++] = static_cast<std::uint8_t>(letter & 0xFF);
    }
    out.size = (out.size + 3) / 4 * 4;
}

constexpr std::int32_t kWhite[] = { 0xF6D6, 0x10000, 0xD32D }; // D50

// Primaries of sRGB, brought from D65 to D50 by the Bradford matrix; their sum is the white exactly.
constexpr std::int32_t kPrimaries[3][3]
    = { { 28576, 14581, 912 }, { 25239, 46983, 6361 }, { 9375, 3972, 46788 } };

constexpr void Light(Buffer& out, const std::int32_t (&xyz)[3])
{
    out.Words({ Tag("XYZ "), 0 });
    out.Fixed({ xyz[0], xyz[1], xyz[2] });
}

// Where a tag's data lie behind the table of tags.
struct Entry {
    std::uint32_t tag;
    std::size_t start, end;
};

struct Body {
    Buffer data;
    std::array<Entry, 10> entries {};
    std::size_t count = 0;

    // Names what was written since `start`.
    constexpr void Name(std::uint32_t tag, std::size_t start)
    {
        entries[count++] = { tag, start, data.size };
    }
};

constexpr void AddCommon(Body& body)
{
    std::size_t start = body.data.size;
    Text(body.data, { u's', u'R', u'G', u'B' });
    body.Name(Tag("desc"), start);
    start = body.data.size;
    Text(body.data, { u'C', u'C', u'0' });
    body.Name(Tag("cprt"), start);
    start = body.data.size;
    Light(body.data, kWhite);
    body.Name(Tag("wtpt"), start);
    start = body.data.size;
    body.data.Words({ Tag("sf32"), 0 });
    body.data.Fixed({ 68674, 1502, -3291, 1939, 64912, -1119, -606, 988, 49262 }); // D65 to D50, Bradford
    body.Name(Tag("chad"), start);
}

// Returns where it starts, so that three channels may share it.
constexpr std::size_t AddCurve(Body& body)
{
    const std::size_t start = body.data.size;
    constexpr std::uint32_t kFiveParameters = 3u << 16;
    body.data.Words({ Tag("para"), 0, kFiveParameters });
    body.data.Fixed({ 157286, 62119, 3417, 5072, 2651 }); // 2.4, 1/1.055, 0.055/1.055, 1/12.92, 0.04045
    return start;
}

constexpr Body ColourBody()
{
    Body body;
    AddCommon(body);
    constexpr std::uint32_t kLights[] = { Tag("rXYZ"), Tag("gXYZ"), Tag("bXYZ") };
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t start = body.data.size;
        Light(body.data, kPrimaries[i]);
        body.Name(kLights[i], start);
    }
    const std::size_t curve = AddCurve(body);
    for (const std::uint32_t tag : { Tag("rTRC"), Tag("gTRC"), Tag("bTRC") })
        body.Name(tag, curve);
    return body;
}

constexpr Body GreyBody()
{
    Body body;
    AddCommon(body);
    body.Name(Tag("kTRC"), AddCurve(body));
    return body;
}

constexpr void Header(Buffer& out, std::uint32_t space, std::size_t size)
{
    constexpr std::uint32_t kVersion = 0x0430'0000;
    constexpr std::uint32_t kDate[] = { 2024u << 16 | 1, 1u << 16, 0 }; // some date must stand there
    out.Words({ static_cast<std::uint32_t>(size), 0, kVersion, Tag("mntr"), space, Tag("XYZ "), kDate[0],
        kDate[1], kDate[2], Tag("acsp") });
    out.Words({ 0, 0, 0, 0, 0, 0, 0 }); // no platform, maker or model; perceptual
    out.Fixed({ kWhite[0], kWhite[1], kWhite[2] });
    out.size = kHeaderSize;
}

constexpr Buffer Assemble(std::uint32_t space, const Body& body)
{
    Buffer whole;
    const std::size_t dataStart = kHeaderSize + 4 + 12 * body.count;
    Header(whole, space, dataStart + body.data.size);
    whole.U32(static_cast<std::uint32_t>(body.count));
    for (std::size_t i = 0; i < body.count; ++i) {
        const Entry& e = body.entries[i];
        whole.Words({ e.tag, static_cast<std::uint32_t>(dataStart + e.start),
            static_cast<std::uint32_t>(e.end - e.start) });
    }
    for (std::size_t i = 0; i < body.data.size; ++i)
        whole.bytes[whole.size++] = body.data.bytes[i];
    return whole;
}

constexpr Buffer kColour = Assemble(Tag("RGB "), ColourBody());
constexpr Buffer kGrey = Assemble(Tag("GRAY"), GreyBody());

} // namespace

Bytes SrgbProfile() noexcept
{
    return Bytes(kColour.bytes).first(kColour.size);
}

Bytes SrgbGreyProfile() noexcept
{
    return Bytes(kGrey.bytes).first(kGrey.size);
}

} // namespace veltrane::imaging
