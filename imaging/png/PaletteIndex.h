#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/png/Pixel.h"

namespace veltrane::imaging::png {

/// Finds pixels' places in the palette. Each has a slot that it shares with none of the others, so that a
/// look takes no decision: where colours change often, those could not be predicted.
class PaletteIndex {
public:
    PaletteIndex();

    /// Gives `count` pixels indices as far as they are new; Full() tells that there was none left.
    void Add(const std::uint8_t* rgba, std::size_t count);

    /// The indices of `count` pixels, all of which were added.
    void Write(const std::uint8_t* rgba, std::uint8_t* indices, std::size_t count) const noexcept;

    [[nodiscard]] bool Full() const noexcept { return full; }
    [[nodiscard]] std::size_t Size() const noexcept { return size; }

    /// The pixels in the order of their indices.
    [[nodiscard]] const std::array<Pixel, 256>& Pixels() const noexcept { return pixels; }

    /// Reorders the indices so that pixels which are not opaque come first: tRNS tells only those.
    void PutTransparentFirst();

private:
    static constexpr int kSlotBits = 14; ///< one factor in seven separates 256 pixels
    static constexpr std::size_t kSlots = std::size_t { 1 } << kSlotBits;

    [[nodiscard]] std::size_t SlotOf(Pixel pixel) const noexcept
    {
        return (pixel * factor) >> (32 - kSlotBits);
    }
    [[nodiscard]] bool Holds(const std::uint8_t* rgba, std::size_t count) const noexcept;
    void AddOne(Pixel pixel);
    [[nodiscard]] bool Separates() const;
    void Place();

    std::array<Pixel, 256> pixels {};
    std::size_t size = 0;
    bool full = false;
    std::uint32_t factor = 0x9E37'79B1;
    std::vector<Pixel> slots; ///< the pixel whose slot it is; free: one whose slot is another
    std::vector<std::uint8_t> indices; ///< for each slot
};

} // namespace veltrane::imaging::png
