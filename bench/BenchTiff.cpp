// Our TIFF module against the library's own reader of whole pictures, which gives the same pixel layout. The
// picture is made here, once for each compression.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include <tiffio.h>

#include <benchmark/benchmark.h>

#include "imaging/tiff/Tiff.h"

using namespace veltrane;
using imaging::Bitmap;
using imaging::kTiff;
using imaging::Limits;

namespace {

constexpr int kWidth = 4000, kHeight = 3000;

// A file in memory, as the library's stream.
struct Stream {
    std::vector<std::uint8_t> bytes;
    std::size_t position = 0;

    static Stream& Of(thandle_t handle) { return *static_cast<Stream*>(handle); }

    static tmsize_t Read(thandle_t handle, void* to, tmsize_t count)
    {
        Stream& self = Of(handle);
        const std::size_t left = self.bytes.size() - std::min(self.position, self.bytes.size());
        const std::size_t given = std::min(left, static_cast<std::size_t>(count));
        std::memcpy(to, self.bytes.data() + self.position, given);
        self.position += given;
        return static_cast<tmsize_t>(given);
    }
    static tmsize_t Write(thandle_t handle, void* from, tmsize_t count)
    {
        Stream& self = Of(handle);
        const auto size = static_cast<std::size_t>(count);
        self.bytes.resize(std::max(self.bytes.size(), self.position + size));
        std::memcpy(self.bytes.data() + self.position, from, size);
        self.position += size;
        return count;
    }
    static toff_t Seek(thandle_t handle, toff_t to, int whence)
    {
        Stream& self = Of(handle);
        self.position = to
            + (whence == SEEK_END        ? self.bytes.size()
                    : whence == SEEK_CUR ? self.position
                                         : 0);
        return self.position;
    }
    static int Close(thandle_t) { return 0; }
    static toff_t Size(thandle_t handle) { return Of(handle).bytes.size(); }

    TIFF* Open(const char* mode)
    {
        position = 0;
        return TIFFClientOpen("", mode, this, Read, Write, Seek, Close, Size, nullptr, nullptr);
    }
};

// Slopes, edges and a little noise: about what a photograph costs to code.
std::vector<std::uint8_t> Row(int y, std::uint32_t& state)
{
    std::vector<std::uint8_t> row;
    row.reserve(3 * kWidth);
    for (int x = 0; x < kWidth; ++x) {
        state = state * 1'664'525 + 1'013'904'223;
        const int noise = static_cast<int>(state >> 30), edge = ((x / 97 + y / 61) % 5) * 20;
        for (const int level : { x * 150 / kWidth + edge, y * 150 / kHeight + edge, 90 + edge })
            row.push_back(static_cast<std::uint8_t>(level + noise));
    }
    return row;
}

Stream Scene(int compression)
{
    Stream stream;
    TIFF* const file = stream.Open("w");
    TIFFSetField(file, TIFFTAG_IMAGEWIDTH, kWidth);
    TIFFSetField(file, TIFFTAG_IMAGELENGTH, kHeight);
    TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(file, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, 16);
    if (compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE)
        TIFFSetField(file, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    std::uint32_t state = 1;
    for (int y = 0; y < kHeight; ++y)
        TIFFWriteScanline(file, Row(y, state).data(), static_cast<std::uint32_t>(y), 0);
    TIFFClose(file);
    return stream;
}

void Megapixels(benchmark::State& state)
{
    state.counters["MP/s"]
        = benchmark::Counter(kWidth * kHeight / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}

void DecodeBare(benchmark::State& state, int compression)
{
    Stream stream = Scene(compression);
    Bitmap picture;
    for (auto _ : state) {
        picture = Bitmap();
        TIFF* const file = stream.Open("rm");
        picture = Bitmap::Uninitialised(kWidth, kHeight);
        TIFFReadRGBAImageOriented(file, kWidth, kHeight, reinterpret_cast<std::uint32_t*>(picture.Writable()),
            ORIENTATION_TOPLEFT, 1);
        TIFFClose(file);
    }
    Megapixels(state);
}

void DecodeOurs(benchmark::State& state, int compression)
{
    const Stream stream = Scene(compression);
    Bitmap picture;
    for (auto _ : state) {
        picture = Bitmap();
        picture = kTiff.decode(stream.bytes, Limits());
    }
    Megapixels(state);
}

BENCHMARK_CAPTURE(DecodeBare, Plain, COMPRESSION_NONE)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeOurs, Plain, COMPRESSION_NONE)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeBare, PackBits, COMPRESSION_PACKBITS)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeOurs, PackBits, COMPRESSION_PACKBITS)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeBare, Lzw, COMPRESSION_LZW)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeOurs, Lzw, COMPRESSION_LZW)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeBare, Deflate, COMPRESSION_ADOBE_DEFLATE)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeOurs, Deflate, COMPRESSION_ADOBE_DEFLATE)->Unit(benchmark::kMillisecond);

} // namespace
