// PNG both ways, beside the usual libraries in the same run. The names tell what is measured:
// Decode/Photo/Ours against Decode/Photo/libspng and so on; MPixel/s and the bytes written are counted.
//
// VELTRANE_BENCH_PHOTO and VELTRANE_BENCH_DRAWING may name PNG files to be used in place of the made ones.

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <png.h>
#include <spng.h>

#include "imaging/png/Png.h"

using namespace veltrane;
using imaging::Bitmap;
using imaging::kPng;
using File = std::vector<std::uint8_t>;

namespace {

class MemorySink final : public imaging::Sink {
public:
    void Write(imaging::Bytes more) override { bytes.insert(bytes.end(), more.begin(), more.end()); }
    File bytes;
};

// Soft shapes of several sizes under the noise of a sensor: what remains after prediction, and so what
// compressors see, is like a photograph's.
Bitmap MakePhoto(int width, int height)
{
    Bitmap picture = Bitmap::Uninitialised(width, height);
    std::mt19937 draw(1);
    std::normal_distribution<float> noise(0, 2.2F);
    std::uint8_t* at = picture.Writable();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, at += 4) {
            const auto fx = static_cast<float>(x), fy = static_cast<float>(y);
            const float shape = 60 * std::sin(fx / 211) * std::cos(fy / 173) + 25 * std::sin((fx + fy) / 37)
                + 9 * std::sin(fx / 5) * std::sin(fy / 7);
            for (int k = 0; k < 3; ++k) {
                const float value = 128 + shape * (1 - 0.2F * static_cast<float>(k)) + noise(draw);
                at[k] = static_cast<std::uint8_t>(std::min(255.0F, std::max(0.0F, value)));
            }
            at[3] = 255;
        }
    }
    picture.Opaque(true);
    return picture;
}

// Windows of text: flat areas, the same few shapes again and again, in more colours than a palette holds.
Bitmap MakeDrawing(int width, int height)
{
    Bitmap picture = Bitmap::Uninitialised(width, height);
    std::mt19937 draw(2);
    std::vector<std::uint32_t> glyphs(64 * 16);
    for (auto& row : glyphs)
        row = static_cast<std::uint32_t>(draw() & draw());
    std::uint8_t* at = picture.Writable();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, at += 4) {
            const auto letter = static_cast<unsigned>((x / 10) * 7919 + (y / 18) * 104729) % 64;
            const bool ink = x % 10 < 8 && y % 18 < 16
                && (glyphs[letter * 16 + static_cast<unsigned>(y % 18)] >> (x % 10) & 1) != 0
                && y / 300 % 2 == 0;
            const auto paper = static_cast<std::uint8_t>(255 - y / 600 * 8);
            const auto bar = static_cast<std::uint8_t>(y % 600 < 24 ? x / 12 : 0);
            at[0] = ink ? 20 : paper;
            at[1] = ink ? 20 : static_cast<std::uint8_t>(paper - bar);
            at[2] = ink ? 40 : static_cast<std::uint8_t>(paper - bar);
            at[3] = 255;
        }
    }
    picture.Opaque(true);
    return picture;
}

Bitmap FromFile(const char* variable, Bitmap (*make)(int, int))
{
    const char* const name = std::getenv(variable);
    if (name == nullptr)
        return make(3000, 2000);
    std::ifstream stream(name, std::ios::binary);
    const File file(std::istreambuf_iterator<char>(stream), {});
    return kPng.decode(file, imaging::Limits {});
}

const Bitmap& Picture(bool photo)
{
    static const Bitmap kPhoto = FromFile("VELTRANE_BENCH_PHOTO", MakePhoto);
    static const Bitmap kDrawing = FromFile("VELTRANE_BENCH_DRAWING", MakeDrawing);
    return photo ? kPhoto : kDrawing;
}

File EncodeOurs(const Bitmap& picture)
{
    MemorySink sink;
    sink.bytes.reserve(picture.Stride() * static_cast<std::size_t>(picture.Height()));
    kPng.encode(picture, -1, sink);
    return std::move(sink.bytes);
}

// libpng with its own choices; without the alpha channel, which is what its users do with a photograph.
File EncodeLibpng(const Bitmap& picture)
{
    const auto width = static_cast<std::size_t>(picture.Width()),
               height = static_cast<std::size_t>(picture.Height());
    File rgb(width * height * 3);
    for (std::size_t i = 0; i < width * height; ++i)
        std::memcpy(rgb.data() + 3 * i, picture.Row(0) + 4 * i, 3);
    png_image image {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = rgb.size() + rgb.size() / 100 + 100'000;
    File file(size);
    png_image_write_to_memory(&image, file.data(), &size, 0, rgb.data(), 0, nullptr);
    file.resize(size);
    return file;
}

void DecodeLibspng(const File& file, File& rgba)
{
    const std::unique_ptr<spng_ctx, void (*)(spng_ctx*)> context(spng_ctx_new(0), spng_ctx_free);
    spng_set_png_buffer(context.get(), file.data(), file.size());
    std::size_t size = 0;
    spng_decoded_image_size(context.get(), SPNG_FMT_RGBA8, &size);
    rgba.resize(size);
    spng_decode_image(context.get(), rgba.data(), size, SPNG_FMT_RGBA8, 0);
}

void CountPixels(benchmark::State& state, const Bitmap& picture)
{
    state.counters["MPixel/s"]
        = benchmark::Counter(static_cast<double>(picture.Width()) * picture.Height() / 1e6,
            benchmark::Counter::kIsIterationInvariantRate);
}

void Encode(benchmark::State& state, bool photo, File (*encode)(const Bitmap&))
{
    const Bitmap& picture = Picture(photo);
    std::size_t bytes = 0;
    for (auto _ : state)
        bytes = encode(picture).size();
    CountPixels(state, picture);
    state.counters["bytes"] = static_cast<double>(bytes);
}

// Both read what libpng wrote.
void DecodeOurs(benchmark::State& state, bool photo)
{
    const File file = EncodeLibpng(Picture(photo));
    for (auto _ : state)
        benchmark::DoNotOptimize(kPng.decode(file, imaging::Limits {}));
    CountPixels(state, Picture(photo));
}

void DecodeTheirs(benchmark::State& state, bool photo)
{
    const File file = EncodeLibpng(Picture(photo));
    File rgba; // kept from one to the next, as the bitmap's block is
    for (auto _ : state)
        DecodeLibspng(file, rgba);
    CountPixels(state, Picture(photo));
}

BENCHMARK_CAPTURE(Encode, Photo / Ours, true, EncodeOurs)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Encode, Photo / libpng, true, EncodeLibpng)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Encode, Drawing / Ours, false, EncodeOurs)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Encode, Drawing / libpng, false, EncodeLibpng)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeOurs, Photo, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeTheirs, Photo / libspng, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeOurs, Drawing, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DecodeTheirs, Drawing / libspng, false)->Unit(benchmark::kMillisecond);

} // namespace
