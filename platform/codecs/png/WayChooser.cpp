#include "platform/codecs/png/WayChooser.h"

#include <algorithm>
#include <vector>

#include "platform/codecs/png/FilterRow.h"
#include "platform/codecs/png/Texture.h"

namespace veltrane::codecs::png {

WayChooser::WayChooser(const Bitmap& picture, const Form& form)
    : picture(picture), form(form), width(static_cast<std::size_t>(picture.Width()))
{
}

Way WayChooser::WayFor(int from, int to)
{
    constexpr int kWorthTryingAll = 12; // bands of a picture: a trial of all ways takes as long as some
    if (form.colour == ColourType::Palette || form.depth < 8)
        return Way::Drawing;
    const Texture texture = TextureOf(picture, from, to);
    if (texture == Texture::Hard)
        return Way::Drawing;
    if (texture == Texture::Natural)
        return natural.Ask([&] { return PhotoOrGrain(from, to); });
    const bool small = picture.Height() < kWorthTryingAll * (to - from);
    return shaded.Ask([&] { return small ? PhotoOrGrain(from, to) : AnyWay(from, to); });
}

// Two searches of the same rows, of small pictures a part of the band: it is the larger part of the work
// there. Grain takes several times as long, so it has to be worth it.
Way WayChooser::PhotoOrGrain(int from, int to)
{
    constexpr int kRows = 24;
    const int end = std::min(to, from + kRows);
    const Columns all { 0, width };
    const std::uint64_t photo = BitsOf(Way::Photo, all, from, end),
                        grain = BitsOf(Way::Grain, all, from, end);
    return photo <= grain + grain / 9 ? Way::Photo : Way::Grain;
}

// All of them, on a patch: looking for all that repeats takes longest. Patterns of some rows must fit into
// it.
Way WayChooser::AnyWay(int from, int to)
{
    constexpr int kRows = 24;
    constexpr std::size_t kPixels = 400;
    const int end = std::min(to, from + kRows);
    const std::size_t pixels = std::min(width, kPixels);
    const Columns middle { (width - pixels) / 2, pixels };
    const auto bits = [&](Way way) { return BitsOf(way, middle, from, end); };
    const std::uint64_t fast = std::min(bits(Way::Photo), bits(Way::Grain)), shades = bits(Way::Shades),
                        drawing = bits(Way::Drawing), least = std::min(shades, drawing);
    if (fast <= least + least / 5)
        return PhotoOrGrain(from, to);
    return shades < drawing ? Way::Shades : Way::Drawing;
}

// Of the lower half, since what comes again must have come before.
std::uint64_t WayChooser::BitsOf(Way way, const Columns& columns, int from, int to)
{
    if (!trial)
        trial = std::make_unique<Trial>();
    StoredRows rows(picture, form, columns, from);
    const Layout& layout = rows.RowLayout();
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(to - from) * layout.stride + kRowMargin);
    const std::uint8_t* const end = rows.Write(bytes.data(), to, IsFiltered(way));
    const std::size_t known = static_cast<std::size_t>(to - from) / 2 * layout.stride;
    return trial->BitsOf(
        { bytes.data(), static_cast<std::size_t>(end - bytes.data()) }, known, LikenessOf(way), layout);
}

} // namespace veltrane::codecs::png
