#include "tests/support/Pictures.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

#include "tests/support/ReadData.h"

namespace veltrane::tests {

using imaging::Bitmap;

Bitmap Pam(const std::string& name)
{
    const std::vector<std::uint8_t> bytes = ReadData(name);
    const std::string text(bytes.begin(), bytes.end());
    constexpr std::string_view kEnd = "ENDHDR\n";
    const std::size_t headEnd = text.find(kEnd);
    if (headEnd == std::string::npos)
        return {};
    std::istringstream head(text.substr(0, headEnd));
    int width = 0, height = 0;
    std::size_t depth = 0;
    for (std::string word; head >> word;) {
        if (word == "WIDTH")
            head >> width;
        else if (word == "HEIGHT")
            head >> height;
        else if (word == "DEPTH")
            head >> depth;
    }
    Bitmap picture = Bitmap::Uninitialised(width, height);
    const std::uint8_t* from = bytes.data() + headEnd + kEnd.size();
    std::uint8_t* to = picture.Writable();
    for (std::size_t i = 0; i < picture.Stride() / 4 * static_cast<std::size_t>(height); ++i, to += 4) {
        to[3] = 255;
        std::copy_n(from + i * depth, depth, to);
    }
    return picture;
}

int Difference(const Bitmap& a, const Bitmap& b)
{
    if (a.Width() != b.Width() || a.Height() != b.Height())
        return 256;
    int most = 0;
    for (int y = 0; y < a.Height(); ++y) {
        const std::uint8_t *p = a.Row(y), *q = b.Row(y);
        for (std::size_t i = 0; i < a.Stride(); ++i) {
            if (p[i | 3] != 0 || q[i | 3] != 0)
                most = std::max(most, std::abs(p[i] - q[i]));
        }
    }
    return most;
}

std::optional<Bitmap> KeptAsIndices(const Bitmap& picture)
{
    std::map<std::uint32_t, std::uint8_t> indices;
    imaging::Palette palette;
    palette.fill(0x400000FF); // what no pixel has must not count: seen through, and coloured
    std::vector<std::uint8_t> kept;
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, picture.Row(y) + 4 * x, sizeof pixel);
            const auto next = static_cast<std::uint8_t>(255 - indices.size());
            if (!indices.contains(pixel) && indices.size() == palette.size())
                return std::nullopt;
            kept.push_back(indices.try_emplace(pixel, next).first->second);
            palette[kept.back()] = pixel;
        }
    }
    Bitmap same = Bitmap::Indexed(picture.Width(), picture.Height(), palette);
    std::ranges::copy(kept, same.WritableIndices());
    same.Opaque(picture.Opaque());
    return same;
}

bool EveryAlphaIs255(const Bitmap& picture)
{
    for (int y = 0; y < picture.Height(); ++y) {
        for (std::size_t i = 3; i < picture.Stride(); i += 4) {
            if (picture.Row(y)[i] != 255)
                return false;
        }
    }
    return true;
}

Bitmap Decoded(const std::string& name)
{
    const std::vector<std::uint8_t> bytes = ReadData(name);
    const imaging::Codec* const codec = imaging::Find(bytes);
    if (codec == nullptr) {
        ADD_FAILURE() << "nobody claims " << name;
        return {};
    }
    Bitmap picture = codec->decode(bytes, {});
    EXPECT_EQ(picture.Opaque(), EveryAlphaIs255(picture));
    return picture;
}

} // namespace veltrane::tests
