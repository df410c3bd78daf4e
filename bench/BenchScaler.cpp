// The preview of a large and of a small picture: our scaler, and the toolkit's in the same run.

#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include "imaging/pixels/Scaler.h"
#include "platform/qt/bench/PeerScaler.h"

using namespace veltrane;

namespace {

constexpr int kShownWidth = 457, kShownHeight = 343;

enum Kind : std::int64_t { Opaque, Transparent };

imaging::Bitmap Photo(const benchmark::State& state)
{
    const auto width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const std::int64_t kind = state.range(2);
    imaging::Bitmap picture = imaging::Bitmap::Uninitialised(width, height);
    std::uint8_t* pixel = picture.Writable();
    std::uint32_t noise = 1;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, pixel += 4) {
            noise = noise * 1664525 + 1013904223;
            pixel[0] = static_cast<std::uint8_t>(x / 24 + static_cast<int>(noise >> 28));
            pixel[1] = static_cast<std::uint8_t>(y / 16);
            pixel[2] = static_cast<std::uint8_t>((x ^ y) >> 4);
            pixel[3] = kind == Opaque ? 255 : static_cast<std::uint8_t>(noise >> 24);
        }
    }
    picture.Opaque(kind == Opaque);
    return picture;
}

void Ours(benchmark::State& state)
{
    const imaging::Bitmap picture = Photo(state);
    const auto width = static_cast<double>(picture.Width()), height = static_cast<double>(picture.Height());
    std::vector<std::uint8_t> shown(std::size_t { kShownWidth } * kShownHeight * 4);
    for (auto _ : state) {
        imaging::ScaleByArea(picture, { 0, 0, width, height },
            { shown.data(), kShownWidth, kShownHeight, std::size_t { kShownWidth } * 4 });
        benchmark::DoNotOptimize(shown.data());
    }
}

void Toolkits(benchmark::State& state)
{
    const imaging::Bitmap picture = Photo(state);
    const qt::PeerScaler peer(picture);
    for (auto _ : state)
        benchmark::DoNotOptimize(peer.Scale(kShownWidth, kShownHeight));
}

// 24 megapixels, and a picture that is little larger than the canvas.
void Cases(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({ "width", "height", "alpha" })->Unit(benchmark::kMicrosecond);
    benchmark->ArgsProduct({ { 6000 }, { 4000 }, { Opaque, Transparent } });
    benchmark->ArgsProduct({ { 640 }, { 480 }, { Opaque, Transparent } });
}

BENCHMARK(Ours)->Apply(Cases)->MeasureProcessCPUTime();
BENCHMARK(Toolkits)->Apply(Cases)->MeasureProcessCPUTime();

} // namespace
