// Our JPEG module against a bare loop over the library, into and from the same pixel layout. The picture is
// made here, or is the file that VELTRANE_BENCH_JPEG names.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>
#include <vector>

#include <jpeglib.h>

#include <benchmark/benchmark.h>

#include "imaging/jpeg/Jpeg.h"

using namespace veltrane;
using imaging::Bitmap;
using imaging::kJpeg;
using imaging::Limits;
using File = std::vector<std::uint8_t>;

namespace {

struct Collector final : imaging::Sink {
    File bytes;
    void Write(imaging::Bytes more) override { bytes.insert(bytes.end(), more.begin(), more.end()); }
};

// Slopes, edges and a little noise: about what a photograph costs to code.
Bitmap Scene(int width, int height)
{
    Bitmap picture = Bitmap::Uninitialised(width, height);
    picture.Opaque(true);
    std::uint8_t* out = picture.Writable();
    std::uint32_t state = 1;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            state = state * 1'664'525 + 1'013'904'223;
            const int noise = static_cast<int>(state >> 28);
            const int edge = ((x / 97 + y / 61) % 5) * 20;
            for (const int level : { x * 150 / width + edge, y * 150 / height + edge, 90 + edge })
                *out++ = static_cast<std::uint8_t>(std::clamp(level + noise, 0, 255));
            *out++ = 255;
        }
    }
    return picture;
}

const File& Photo()
{
    static const File photo = [] {
        if (const char* const path = std::getenv("VELTRANE_BENCH_JPEG")) {
            std::ifstream file(path, std::ios::binary);
            return File(std::istreambuf_iterator<char>(file), {});
        }
        Collector sink;
        kJpeg.encode(Scene(4000, 3000), 85, sink);
        return std::move(sink.bytes);
    }();
    return photo;
}

// The file with a segment of metadata put in front.
File With(std::uint8_t marker, std::string_view head, const File& data)
{
    const std::size_t size = 2 + head.size() + data.size();
    File file;
    file.reserve(4 + size + Photo().size());
    for (const std::size_t byte : { std::size_t { 0xFF }, std::size_t { 0xD8 }, std::size_t { 0xFF },
             std::size_t { marker }, size >> 8, size & 0xFF })
        file.push_back(static_cast<std::uint8_t>(byte));
    file.insert(file.end(), head.begin(), head.end());
    file.insert(file.end(), data.begin(), data.end());
    file.insert(file.end(), Photo().begin() + 2, Photo().end());
    return file;
}

File Tagged()
{
    std::ifstream profile(BENCH_DATA "/colour/adobe.icc", std::ios::binary);
    return With(0xE2, { "ICC_PROFILE\0\1\1", 14 }, File(std::istreambuf_iterator<char>(profile), {}));
}

File Turned()
{
    constexpr std::string_view kRightTop { "Exif\0\0MM\0*\0\0\0\10\0\1\1\22\0\3\0\0\0\1\0\6\0\0", 28 };
    return With(0xE1, kRightTop, {});
}

void BareDecode(const File& file, Bitmap& picture)
{
    jpeg_decompress_struct jpeg {};
    jpeg_error_mgr errors {};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), file.size());
    jpeg_read_header(&jpeg, TRUE);
    jpeg.out_color_space = JCS_EXT_RGBA;
    jpeg_start_decompress(&jpeg);
    picture = Bitmap::Uninitialised(static_cast<int>(jpeg.image_width), static_cast<int>(jpeg.image_height));
    std::uint8_t* const rows = picture.Writable();
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = rows + picture.Stride() * jpeg.output_scanline;
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
}

void BareEncode(const Bitmap& picture, int quality, bool optimise)
{
    jpeg_compress_struct jpeg {};
    jpeg_error_mgr errors {};
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = static_cast<JDIMENSION>(picture.Width());
    jpeg.image_height = static_cast<JDIMENSION>(picture.Height());
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, quality, TRUE);
    jpeg.optimize_coding = optimise;
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < jpeg.image_height) {
        auto* const row = const_cast<JSAMPROW>(picture.Row(static_cast<int>(jpeg.next_scanline)));
        JSAMPROW rows[] = { row };
        jpeg_write_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    std::free(memory);
}

void Megapixels(benchmark::State& state, const Bitmap& picture)
{
    const double pixels = static_cast<double>(picture.Width()) * picture.Height();
    state.counters["MP/s"] = benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}

void DecodeBare(benchmark::State& state)
{
    Bitmap picture;
    for (auto _ : state) {
        picture = Bitmap();
        BareDecode(Photo(), picture);
    }
    Megapixels(state, picture);
}

void DecodeOurs(benchmark::State& state, File (*file)())
{
    const File bytes = file();
    Bitmap picture;
    for (auto _ : state) {
        picture = Bitmap();
        picture = kJpeg.decode(bytes, Limits());
    }
    Megapixels(state, picture);
}

void EncodeBare(benchmark::State& state, bool optimise)
{
    const Bitmap picture = kJpeg.decode(Photo(), Limits());
    for (auto _ : state)
        BareEncode(picture, 70, optimise);
    Megapixels(state, picture);
}

void EncodeOurs(benchmark::State& state)
{
    const Bitmap picture = kJpeg.decode(Photo(), Limits());
    std::size_t size = 0;
    for (auto _ : state) {
        Collector sink;
        kJpeg.encode(picture, 70, sink);
        size = sink.bytes.size();
    }
    state.counters["bytes"] = static_cast<double>(size);
    Megapixels(state, picture);
}

BENCHMARK(DecodeBare)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeOurs, Plain, [] { return Photo(); })->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeOurs, OtherPrimaries, Tagged)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeOurs, TurnedByExif, Turned)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EncodeBare, FixedTables, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EncodeBare, OptimisedTables, true)->Unit(benchmark::kMillisecond);
BENCHMARK(EncodeOurs)->Unit(benchmark::kMillisecond);

} // namespace
