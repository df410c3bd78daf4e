#include "imaging/png/IdatStream.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <libdeflate.h>

#include "imaging/png/Checksum.h"
#include "imaging/png/Chunks.h"

namespace veltrane::imaging::png {

namespace {

constexpr std::size_t kChunkHead = 8; // length and type
constexpr std::size_t kChunkGoal = 64 * 1024; // a chunk is written as soon as it has so much

void PutNumber(std::uint8_t* to, std::uint32_t number) noexcept
{
    for (int i = 0; i < 4; ++i)
        to[i] = static_cast<std::uint8_t>(number >> (24 - 8 * i));
}

} // namespace

IdatStream::IdatStream(Sink& to, std::size_t most, const Layout& layout)
    : sink(to)
    , layout(layout)
    , window(kWindow + most + 8)
    , out(kChunkHead + kChunkGoal + BlockBound(most) + 16)
    , writer(out.data() + kChunkHead)
{
    // Deflate, window of 32 KiB, no hint at the effort. Source: RFC 1950, 2.2.
    writer.Put(0x78, 8);
    writer.Put(0x01, 8);
    writer.Flush();
}

void IdatStream::Write(std::size_t bytes, Likeness likeness, bool last)
{
    adler = libdeflate_adler32(adler, Room(), bytes);
    WriteBlocks(kept + bytes, likeness, last);
    Keep(kept + bytes);
    if (last) {
        writer.Align();
        writer.Put(__builtin_bswap32(adler), 32);
        writer.Flush();
        WriteChunk(true);
    }
}

void IdatStream::WriteBlocks(std::size_t end, Likeness likeness, bool last)
{
    for (std::size_t at = kept, next = end; at < end; at = next) {
        const std::uint8_t* const data = window.data();
        next = search.Cut(data, origin, at, end, likeness, layout, block);
        WriteBlock(writer, block, { data + at, next - at }, last && next == end);
        WriteChunk(false);
    }
}

void IdatStream::Keep(std::size_t end)
{
    const std::size_t surplus = end - std::min(end, kWindow);
    std::memmove(window.data(), window.data() + surplus, end - surplus);
    origin += static_cast<std::uint32_t>(surplus);
    kept = end - surplus;
}

// Writes the whole bytes there are as a chunk, if they are enough or the stream ends.
void IdatStream::WriteChunk(bool last)
{
    std::uint8_t* const data = out.data() + kChunkHead;
    const auto bytes = static_cast<std::size_t>(writer.End() - data);
    if (bytes < (last ? 1 : kChunkGoal))
        return;
    PutNumber(out.data(), static_cast<std::uint32_t>(bytes));
    PutNumber(out.data() + 4, Type("IDAT"));
    // What the last flush left behind the end is still pending, so the checksum may take its place.
    PutNumber(data + bytes, ChecksumOf({ data - 4, bytes + 4 }));
    sink.Write({ out.data(), kChunkHead + bytes + 4 });
    writer.MoveTo(data);
}

void WriteChunk(Sink& to, std::uint32_t type, Bytes data)
{
    std::vector<std::uint8_t> chunk(kChunkHead + data.size() + 4);
    PutNumber(chunk.data(), static_cast<std::uint32_t>(data.size()));
    PutNumber(chunk.data() + 4, type);
    std::copy(data.begin(), data.end(), chunk.begin() + kChunkHead);
    const std::size_t end = kChunkHead + data.size();
    PutNumber(chunk.data() + end, ChecksumOf({ chunk.data() + 4, data.size() + 4 }));
    to.Write(chunk);
}

} // namespace veltrane::imaging::png
