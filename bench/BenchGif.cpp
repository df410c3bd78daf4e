// Our GIF module against a bare loop over the library, into the same pixel layout. The picture is made here,
// or is the file that VELTRANE_BENCH_GIF names.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

#include <gif_lib.h>

#include <benchmark/benchmark.h>

#include "imaging/gif/Gif.h"

using namespace veltrane;
using imaging::Bitmap;
using imaging::kGif;
using imaging::Limits;
using File = std::vector<std::uint8_t>;

namespace {

// Areas with edges and a little noise: runs for the coder as in a reduced photograph.
std::uint8_t Index(int x, int y, std::uint32_t chance)
{
    return static_cast<std::uint8_t>(
        (x / 97 + y / 61) % 5 * 40 + (x + y) / 64 % 16 + static_cast<int>(chance >> 30));
}

int Append(GifFileType* gif, const GifByteType* bytes, int count)
{
    auto& file = *static_cast<File*>(gif->UserData);
    file.insert(file.end(), bytes, bytes + count);
    return count;
}

File Scene(int width, int height)
{
    File file;
    std::array<GifColorType, 256> colours {};
    for (std::size_t i = 0; i < colours.size(); ++i)
        colours[i] = { static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(255 - i),
            static_cast<std::uint8_t>(i * 7) };
    ColorMapObject* const map = GifMakeMapObject(256, colours.data());
    GifFileType* const gif = EGifOpen(&file, Append, nullptr);
    EGifPutScreenDesc(gif, width, height, 8, 0, map);
    EGifPutImageDesc(gif, 0, 0, width, height, false, nullptr);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(width));
    std::uint32_t state = 1;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            state = state * 1'664'525 + 1'013'904'223;
            row[static_cast<std::size_t>(x)] = Index(x, y, state);
        }
        EGifPutLine(gif, row.data(), width);
    }
    EGifCloseFile(gif, nullptr);
    GifFreeMapObject(map);
    return file;
}

const File& Picture()
{
    static const File picture = [] {
        if (const char* const path = std::getenv("VELTRANE_BENCH_GIF")) {
            std::ifstream file(path, std::ios::binary);
            return File(std::istreambuf_iterator<char>(file), {});
        }
        return Scene(4000, 3000);
    }();
    return picture;
}

int Take(GifFileType* gif, GifByteType* to, int count)
{
    auto& rest = *static_cast<imaging::Bytes*>(gif->UserData);
    const std::size_t given = std::min(static_cast<std::size_t>(count), rest.size());
    std::copy_n(rest.begin(), given, to);
    rest = rest.subspan(given);
    return static_cast<int>(given);
}

void BareDecode(const File& file, Bitmap& picture)
{
    imaging::Bytes rest(file);
    GifFileType* const gif = DGifOpen(&rest, Take, nullptr);
    GifRecordType type = UNDEFINED_RECORD_TYPE;
    while (DGifGetRecordType(gif, &type) == GIF_OK && type == EXTENSION_RECORD_TYPE) {
        GifByteType* block = nullptr;
        int code = 0;
        DGifGetExtension(gif, &code, &block);
        while (block != nullptr)
            DGifGetExtensionNext(gif, &block);
    }
    DGifGetImageDesc(gif);
    const ColorMapObject& map = *(gif->Image.ColorMap != nullptr ? gif->Image.ColorMap : gif->SColorMap);
    picture = Bitmap::Uninitialised(gif->Image.Width, gif->Image.Height);
    std::uint8_t* out = picture.Writable();
    std::vector<std::uint8_t> row(static_cast<std::size_t>(gif->Image.Width));
    for (int y = 0; y < gif->Image.Height; ++y) {
        DGifGetLine(gif, row.data(), gif->Image.Width);
        for (const std::uint8_t index : row) {
            const GifColorType& colour = map.Colors[index];
            *out++ = colour.Red;
            *out++ = colour.Green;
            *out++ = colour.Blue;
            *out++ = 255;
        }
    }
    DGifCloseFile(gif, nullptr);
}

void Megapixels(benchmark::State& state, const Bitmap& picture)
{
    const double pixels = static_cast<double>(picture.Width()) * picture.Height();
    state.counters["MP/s"] = benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}

void DecodeBare(benchmark::State& state)
{
    const File& file = Picture();
    Bitmap picture;
    for (auto _ : state) {
        picture = Bitmap();
        BareDecode(file, picture);
    }
    Megapixels(state, picture);
}

void DecodeOurs(benchmark::State& state)
{
    const File& file = Picture();
    Bitmap picture;
    for (auto _ : state) {
        picture = Bitmap();
        picture = kGif.decode(file, Limits());
    }
    Megapixels(state, picture);
}

BENCHMARK(DecodeBare)->Unit(benchmark::kMillisecond);
BENCHMARK(DecodeOurs)->Unit(benchmark::kMillisecond);

} // namespace
