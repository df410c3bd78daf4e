#include "imaging/png/PaletteIndex.h"

#include <algorithm>
#include <bitset>

namespace veltrane::imaging::png {

PaletteIndex::PaletteIndex() : slots(kSlots), indices(kSlots)
{
    Place();
}

void PaletteIndex::Add(const std::uint8_t* rgba, std::size_t count)
{
    constexpr std::size_t kAtOnce = 64;
    for (std::size_t done = 0, some = 0; done < count && !full; done += some, rgba += 4 * some) {
        some = std::min(kAtOnce, count - done);
        if (Holds(rgba, some))
            continue;
        for (std::size_t i = 0; i < some && !full; ++i)
            AddOne(LoadPixel(rgba + 4 * i));
    }
}

bool PaletteIndex::Holds(const std::uint8_t* rgba, std::size_t count) const noexcept
{
    Pixel differences = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const Pixel pixel = LoadPixel(rgba + 4 * i);
        differences |= slots[SlotOf(pixel)] ^ pixel;
    }
    return differences == 0;
}

void PaletteIndex::AddOne(Pixel pixel)
{
    const std::size_t slot = SlotOf(pixel);
    const Pixel there = slots[slot];
    if (there == pixel)
        return;
    if (size == pixels.size()) {
        full = true;
        return;
    }
    pixels[size++] = pixel;
    const bool free = SlotOf(there) != slot;
    if (free) {
        slots[slot] = pixel;
        indices[slot] = static_cast<std::uint8_t>(size - 1);
        return;
    }
    // Another factor. A picture made to need more tries than these is stored without a palette.
    constexpr int kTries = 1000;
    constexpr std::uint32_t kNext = 0x85EB'CA6B; // odd, as each product of odd factors
    for (int i = 0; i < kTries && !full; ++i) {
        factor *= kNext;
        if (Separates())
            return Place();
    }
    full = true;
}

bool PaletteIndex::Separates() const
{
    std::bitset<kSlots> taken;
    return std::none_of(pixels.begin(), pixels.begin() + static_cast<std::ptrdiff_t>(size), [&](Pixel pixel) {
        const std::size_t slot = SlotOf(pixel);
        const bool before = taken[slot];
        taken[slot] = true;
        return before;
    });
}

void PaletteIndex::Place()
{
    std::fill(slots.begin(), slots.end(), Pixel { 0 }); // whose slot is the first
    slots[0] = 1;
    while (SlotOf(slots[0]) == 0)
        slots[0] *= 2;
    for (std::size_t i = 0; i < size; ++i) {
        slots[SlotOf(pixels[i])] = pixels[i];
        indices[SlotOf(pixels[i])] = static_cast<std::uint8_t>(i);
    }
}

void PaletteIndex::Write(const std::uint8_t* rgba, std::uint8_t* to, std::size_t count) const noexcept
{
    for (std::size_t i = 0; i < count; ++i)
        to[i] = indices[SlotOf(LoadPixel(rgba + 4 * i))];
}

void PaletteIndex::PutTransparentFirst()
{
    const auto end = pixels.begin() + static_cast<std::ptrdiff_t>(size);
    std::stable_partition(pixels.begin(), end, [](Pixel pixel) { return Channels(pixel)[3] != 255; });
    Place();
}

} // namespace veltrane::imaging::png
