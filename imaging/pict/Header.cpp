#include "imaging/pict/Header.h"

#include <algorithm>
#include <array>

#include "imaging/Codec.h"
#include "imaging/Fault.h"
#include "imaging/pict/Opcodes.h"

namespace veltrane::imaging::pict {

namespace {

constexpr std::size_t kFileHeader = 512; ///< for the application that wrote the file
constexpr std::size_t kMark = 10; ///< behind the size and the frame
constexpr int kExtended = -2; ///< the header that tells a resolution

bool MarkAt(Bytes head, std::size_t at, Bytes mark) noexcept
{
    return head.size() >= at + mark.size() && std::ranges::equal(head.subspan(at, mark.size()), mark);
}

bool FrameHoldsSomething(Bytes head, std::size_t start)
{
    ByteReader in(head, std::endian::big);
    in.Seek(start + 2);
    return !ReadRect(in).Empty();
}

// Opcodes that version 1 is known to have held; a reserved one is a sign that this is no picture.
bool KnownInVersionOne(int opcode) noexcept
{
    if (opcode >= kRects && opcode < kBitsRect)
        return (opcode & 7) <= 4;
    constexpr auto kOthers = std::to_array<std::array<int, 2>>(
        { { kNop, kVersion }, { kPnLocHFrac, kChExtra }, { kLine, kShortLineFrom }, { kLongText, 0x2E },
            { kBitsRect, kBitsRgn }, { kPackBitsRect, kPackBitsRgn }, { 0xA0, 0xA1 }, { kEndPic, kEndPic } });
    return std::ranges::any_of(
        kOthers, [opcode](const auto& range) { return opcode >= range[0] && opcode <= range[1]; });
}

// The mark of version 1 is two bytes that any file may hold; so its opcodes have to make sense as well, as
// far as they can be seen.
bool OpcodesMakeSense(Bytes head, std::size_t at)
{
    ByteReader in(head, std::endian::big);
    in.Seek(at);
    while (in.Remaining() > 16) {
        const int opcode = in.U8();
        if (!KnownInVersionOne(opcode))
            return false;
        const auto length = DataLength(opcode, in);
        if (opcode == kEndPic || !length || *length > in.Remaining())
            break;
        in.Skip(*length);
    }
    return true;
}

// The places where a picture may begin, the surest signs first.
std::optional<Header> Find(Bytes head)
{
    constexpr std::array<std::uint8_t, 4> kTwo { 0x00, 0x11, 0x02, 0xFF };
    constexpr std::array<std::uint8_t, 2> kOne { 0x11, 0x01 };
    for (const std::size_t start : { std::size_t { 0 }, kFileHeader }) {
        if (MarkAt(head, start + kMark, kTwo) && FrameHoldsSomething(head, start))
            return Header { 2, start, start + kMark + kTwo.size(), {} };
    }
    for (const std::size_t start : { kFileHeader, std::size_t { 0 } }) {
        const std::size_t opcodes = start + kMark + kOne.size();
        if (MarkAt(head, start + kMark, kOne) && FrameHoldsSomething(head, start)
            && OpcodesMakeSense(head.first(std::min(head.size(), kProbeBytes)), opcodes))
            return Header { 1, start, opcodes, {} };
    }
    return std::nullopt;
}

// The extended header tells the rectangle that the opcodes are drawn in, at the resolution they were made
// for, where the frame is the same at 72 dots an inch. An empty one tells nothing.
Rect ExtendedFrame(ByteReader in, const Rect& frame)
{
    if (in.Remaining() < 26 || in.U16() != kHeader || in.I16() != kExtended)
        return frame;
    in.Skip(10); // reserved, horizontal and vertical resolution
    const Rect native = ReadRect(in);
    return native.Empty() ? frame : native;
}

} // namespace

bool LooksLikePicture(Bytes head) noexcept
{
    try {
        // Another format of the same suffix, .pic, whose pixels may be anything.
        constexpr std::array<std::uint8_t, 4> kSoftimage { 0x53, 0x80, 0xF6, 0x34 };
        return !MarkAt(head, 0, kSoftimage) && Find(head).has_value();
    } catch (const Fault&) {
        return false; // too short for what it would have to hold
    }
}

Header ReadHeader(Bytes file)
{
    std::optional<Header> header = Find(file);
    if (!header)
        throw Fault(Fault::FormatUnknown);
    ByteReader in(file, std::endian::big);
    in.Seek(header->start + 2);
    header->frame = ReadRect(in);
    in.Seek(header->opcodes);
    if (header->version == 2)
        header->frame = ExtendedFrame(in, header->frame);
    return *header;
}

} // namespace veltrane::imaging::pict
