#include "imaging/jpeg/Pixels.h"

#include <array>
#include <cstring>
#include <tuple>

namespace veltrane::imaging::jpeg {

namespace {

// Traits of pixels, as bits.
constexpr unsigned kColoured = 1, kSeenThrough = 2;

unsigned TraitsOf(const std::uint8_t* rgba, std::size_t pixels)
{
    std::uint32_t differences = 0,
                  alpha = 0xFF; // of channels against each other, over all pixels; all alphas combined
    for (const std::uint8_t* const end = rgba + 4 * pixels; rgba != end; rgba += 4) {
        differences |= static_cast<std::uint32_t>((rgba[0] ^ rgba[1]) | (rgba[1] ^ rgba[2]));
        alpha &= rgba[3];
    }
    return (differences != 0 ? kColoured : 0) | (alpha != 0xFF ? kSeenThrough : 0);
}

// Looks rows of indices up in the traits of each index.
class Indices {
public:
    explicit Indices(const Bitmap& picture) : picture(picture)
    {
        const auto* const colours = reinterpret_cast<const std::uint8_t*>(picture.Colours().data());
        for (std::size_t i = 0; i < traits.size(); ++i) {
            traits[i] = static_cast<std::uint8_t>(TraitsOf(colours + Bitmap::kBytesPerPixel * i, 1));
            possible |= traits[i];
        }
    }

    [[nodiscard]] unsigned Possible() const noexcept { return possible; }
    [[nodiscard]] unsigned TraitsOfRow(int y) const noexcept
    {
        const std::uint8_t* const row = picture.Indices(y);
        unsigned found = 0;
        for (std::size_t i = 0; i < static_cast<std::size_t>(picture.Width()); ++i)
            found |= traits[row[i]];
        return found;
    }

private:
    const Bitmap& picture;
    std::array<std::uint8_t, std::tuple_size_v<Palette>> traits {};
    unsigned possible = 0;
};

// The traits that occur in the picture; stops as soon as both do.
template<class OfRow>
unsigned Find(unsigned wanted, int height, OfRow ofRow)
{
    unsigned found = 0;
    for (int y = 0; y < height && found != wanted; ++y)
        found |= ofRow(y) & wanted;
    return found;
}

using Pair = std::uint8_t __attribute__((vector_size(8))); // two pixels
using Words = std::uint16_t __attribute__((vector_size(16)));

// `bytes` of at most two pixels.
inline void LayPair(const std::uint8_t* rgba, std::uint8_t* opaque, std::size_t bytes)
{
    constexpr Pair kAlphas { 0, 0, 0, 255, 0, 0, 0, 255 };
    Pair pair {};
    std::memcpy(&pair, rgba, bytes);
    const Words channels = __builtin_convertvector(pair, Words);
    const Words alphas = __builtin_shufflevector(channels, channels, 3, 3, 3, 3, 7, 7, 7, 7);
    const Words laid = (channels * alphas + (255 - alphas) * 255 + 127) / 255;
    pair = __builtin_convertvector(laid, Pair) | kAlphas;
    std::memcpy(opaque, &pair, bytes);
}

} // namespace

Content Examine(const Bitmap& picture)
{
    const unsigned wanted = picture.Opaque() ? kColoured : kColoured | kSeenThrough;
    unsigned found = 0;
    if (picture.Indices(0) != nullptr) {
        const Indices indices(picture);
        found = Find(
            wanted & indices.Possible(), picture.Height(), [&](int y) { return indices.TraitsOfRow(y); });
    } else {
        const auto width = static_cast<std::size_t>(picture.Width());
        found = Find(wanted, picture.Height(), [&](int y) { return TraitsOf(picture.Row(y), width); });
    }
    return { (found & kSeenThrough) == 0, (found & kColoured) == 0 };
}

void LayOnWhite(const std::uint8_t* rgba, std::uint8_t* opaque, std::size_t pixels)
{
    for (; pixels >= 2; pixels -= 2, rgba += sizeof(Pair), opaque += sizeof(Pair))
        LayPair(rgba, opaque, sizeof(Pair));
    LayPair(rgba, opaque, 4 * pixels);
}

} // namespace veltrane::imaging::jpeg
