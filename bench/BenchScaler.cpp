// The preview of a 24-megapixel picture: our scaler, and the toolkit's in the same run.

#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include "platform/Scaler.h"
#include "platform/qt/bench/PeerScaler.h"

using namespace veltrane;

namespace {

constexpr int kWidth = 6000, kHeight = 4000;
constexpr int kShownWidth = 457, kShownHeight = 343;

enum Kind : std::int64_t { Opaque, Transparent };

codecs::Bitmap Photo(std::int64_t kind)
{
    codecs::Bitmap picture = codecs::Bitmap::Uninitialised(kWidth, kHeight);
    std::uint8_t* pixel = picture.Writable();
    std::uint32_t noise = 1;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x, pixel += 4) {
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
    const codecs::Bitmap picture = Photo(state.range(0));
    std::vector<std::uint8_t> shown(std::size_t { kShownWidth } * kShownHeight * 4);
    for (auto _ : state) {
        ScaleByArea(picture, { 0, 0, kWidth, kHeight },
            { shown.data(), kShownWidth, kShownHeight, std::size_t { kShownWidth } * 4 });
        benchmark::DoNotOptimize(shown.data());
    }
}

void Toolkits(benchmark::State& state)
{
    const codecs::Bitmap picture = Photo(state.range(0));
    const qt::PeerScaler peer(picture);
    for (auto _ : state)
        benchmark::DoNotOptimize(peer.Scale(kShownWidth, kShownHeight));
}

BENCHMARK(Ours)->Arg(Opaque)->Arg(Transparent)->ArgName("alpha")->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
BENCHMARK(Toolkits)->Arg(Opaque)->Arg(Transparent)->ArgName("alpha")->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

} // namespace
