#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace veltrane::imaging {

/// A pixel for each index, as it lies in memory: straight RGBA.
using Palette = std::array<std::uint32_t, 256>;

/// The pixels of `count` indices.
void Expand(
    const Palette& palette, const std::uint8_t* indices, std::size_t count, std::uint8_t* rgba) noexcept;

/// Owns the memory of pixels.
class PixelBlock {
public:
    PixelBlock() = default;
    virtual ~PixelBlock() = default;
    PixelBlock(const PixelBlock&) = delete;
    PixelBlock& operator=(const PixelBlock&) = delete;

    /// The pixels. Raises Fault::NoMemory when they have to be made first and there is not the room.
    [[nodiscard]] std::uint8_t* Data()
    {
        if (memory == nullptr)
            Make();
        return static_cast<std::uint8_t*>(memory);
    }

protected:
    /// Makes the pixels of a block that is without.
    virtual void Make() { }

    void* memory = nullptr;
};

/// Bytes that hold anything at first. Large ones are recycled.
class AnyBlock final : public PixelBlock {
public:
    /// Raises Fault::NoMemory.
    explicit AnyBlock(std::size_t wanted);
    ~AnyBlock() override;

private:
    std::size_t size;
};

/// Zeros, which take no room before they are touched. Never recycled, as nobody may ever touch them.
class ZeroBlock final : public PixelBlock {
public:
    /// Raises Fault::NoMemory.
    explicit ZeroBlock(std::size_t size);
    ~ZeroBlock() override;

private:
    std::size_t size;
};

/// Pixels that are told by indices, one byte each, until somebody wants them themselves.
class IndexedBlock final : public PixelBlock {
public:
    /// With `slack` bytes behind the indices. Raises Fault::NoMemory.
    IndexedBlock(std::size_t pixels, const Palette& palette, std::size_t slack);

    [[nodiscard]] std::uint8_t* Indices() noexcept { return at; }
    [[nodiscard]] const Palette& Colours() const noexcept { return palette; }

private:
    void Make() override;

    std::size_t pixels;
    Palette palette;
    AnyBlock indices;
    std::uint8_t* at;
    std::optional<AnyBlock> made;
};

} // namespace veltrane::imaging
