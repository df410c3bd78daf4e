#include "imaging/png/WayChooser.h"

#include <algorithm>
#include <vector>

#include "imaging/png/FilterRow.h"
#include "imaging/png/Texture.h"

namespace veltrane::imaging::png {

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
    if (texture == Texture::Natural || picture.Height() < kWorthTryingAll * (to - from))
        return natural.Ask([&] { return PhotoOrGrain(from, to); });
    return shaded.Ask([&] { return AnyWay(from, to); });
}

// Two searches of the same rows, few of them: of small pictures it is a large part of the work. They are
// taken from the middle of the bands that will be stored so at least, since pictures' edges are plainer.
// Grain takes twice as long, so it has to be worth it.
Way WayChooser::PhotoOrGrain(int from, int to)
{
    constexpr std::size_t kBytes = 64 * 1024;
    constexpr int kLeastRows = 2, kMostRows = 24;
    const int rows
        = std::clamp(static_cast<int>(kBytes / (width * form.BitsPerPixel() / 8)), kLeastRows, kMostRows),
        first = std::min(from + Verdict::kFirstTrust / 2 * (to - from), picture.Height() - (to - from));
    const Patch patch = PatchOf({ 0, width }, first, std::min(first + rows, picture.Height()), true);
    const std::uint64_t photo = BitsOf(Way::Photo, patch), grain = BitsOf(Way::Grain, patch);
    return photo <= grain + grain / 10 ? Way::Photo : Way::Grain;
}

// All of them, on a patch: looking for all that repeats takes longest, so it has to save a quarter. Patterns
// of some rows must fit into the patch.
Way WayChooser::AnyWay(int from, int to)
{
    constexpr int kRows = 24;
    constexpr std::size_t kPixels = 400;
    const int end = std::min(to, from + kRows);
    const std::size_t pixels = std::min(width, kPixels);
    const Columns middle { (width - pixels) / 2, pixels };
    const Patch filtered = PatchOf(middle, from, end, true);
    const std::uint64_t fast = std::min(BitsOf(Way::Photo, filtered), BitsOf(Way::Grain, filtered)),
                        shades = BitsOf(Way::Shades, filtered),
                        drawing = BitsOf(Way::Drawing, PatchOf(middle, from, end, false)),
                        least = std::min(shades, drawing);
    if (fast <= least + least / 3)
        return PhotoOrGrain(from, to);
    return shades < drawing ? Way::Shades : Way::Drawing;
}

WayChooser::Patch WayChooser::PatchOf(const Columns& columns, int from, int to, bool filtered) const
{
    StoredRows rows(picture, form, columns, from);
    const Layout layout = rows.RowLayout();
    const auto count = static_cast<std::size_t>(to - from);
    Patch patch { layout, std::vector<std::uint8_t>(count * layout.stride + kRowMargin), count };
    rows.Write(patch.bytes.data(), to, filtered);
    return patch;
}

// Of the lower half, since what comes again must have come before.
std::uint64_t WayChooser::BitsOf(Way way, const Patch& patch)
{
    if (!trial)
        trial = std::make_unique<Trial>();
    const std::size_t stride = patch.layout.stride;
    return trial->BitsOf(Bytes(patch.bytes).first(patch.rows * stride), patch.rows / 2 * stride,
        LikenessOf(way), patch.layout);
}

} // namespace veltrane::imaging::png
