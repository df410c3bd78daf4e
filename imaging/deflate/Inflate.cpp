#include "imaging/deflate/Inflate.h"

#include <algorithm>
#include <memory>
#include <new>

#include <libdeflate.h>
#include <zlib.h>

#include "imaging/Fault.h"

namespace veltrane::imaging {

namespace {

struct FreeDecompressor {
    void operator()(libdeflate_decompressor* one) const noexcept { libdeflate_free_decompressor(one); }
};
using Decompressor = std::unique_ptr<libdeflate_decompressor, FreeDecompressor>;

Decompressor NewDecompressor()
{
    Decompressor fresh(libdeflate_alloc_decompressor());
    if (!fresh)
        throw std::bad_alloc();
    return fresh;
}

// Inflates piece by piece, for output of unknown size.
class Stream {
public:
    explicit Stream(Bytes input) : input(input)
    {
        if (inflateInit(&state) != Z_OK)
            throw std::bad_alloc();
    }
    ~Stream() { inflateEnd(&state); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    // Fills as much of `room` as there is; the number of bytes.
    std::size_t Read(std::span<std::uint8_t> room)
    {
        std::size_t got = 0;
        while (got < room.size() && status == Z_OK)
            got += Step(room.subspan(got));
        return got;
    }
    [[nodiscard]] bool Ended() const noexcept { return status == Z_STREAM_END; }

private:
    static constexpr std::size_t kMost = std::size_t { 1 } << 30; // the library counts in 32 bits

    std::size_t Step(std::span<std::uint8_t> room)
    {
        const Bytes some = input.first(std::min(input.size(), kMost));
        const std::size_t most = std::min(room.size(), kMost);
        state.next_in = const_cast<Bytef*>(some.data()); // an old interface; it only reads
        state.avail_in = static_cast<uInt>(some.size());
        state.next_out = room.data();
        state.avail_out = static_cast<uInt>(most);
        status = inflate(&state, Z_NO_FLUSH);
        input = input.subspan(some.size() - state.avail_in);
        return most - state.avail_out;
    }

    Bytes input;
    z_stream state {};
    int status = Z_OK;
};

} // namespace

Inflated InflateRows(Bytes stream, std::span<std::uint8_t> rows)
{
    const Decompressor decompressor = NewDecompressor();
    std::size_t got = 0;
    const libdeflate_result result = libdeflate_zlib_decompress(
        decompressor.get(), stream.data(), stream.size(), rows.data(), rows.size(), &got);
    switch (result) {
    case LIBDEFLATE_SUCCESS: return got == rows.size() ? Inflated::Whole : Inflated::TooLittle;
    case LIBDEFLATE_INSUFFICIENT_SPACE:
        // Some writers let their stream run on. Rare enough for the slower library that can stop.
        return Stream(stream).Read(rows) == rows.size() ? Inflated::Whole : Inflated::Broken;
    default: return Inflated::Broken;
    }
}

std::vector<std::uint8_t> InflateSmall(Bytes stream, std::size_t most)
{
    constexpr std::size_t kStep = 16 * 1024;
    Stream source(stream);
    std::vector<std::uint8_t> all;
    while (!source.Ended()) {
        const std::size_t before = all.size();
        all.resize(before + kStep);
        all.resize(before + source.Read(std::span(all).subspan(before)));
        if (all.size() > most || (all.size() < before + kStep && !source.Ended()))
            return {};
    }
    return all;
}

} // namespace veltrane::imaging
