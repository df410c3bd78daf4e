#pragma once

#include <cstdint>

namespace veltrane::imaging {

/// What one picture may ask of the machine. Every codec checks its header against one such value before it
/// allocates pixels; fuzzers and tests pass smaller ones.
struct Limits {
    static constexpr int kLargestSide = 32'767;

    int maxSide = kLargestSide;
    std::int64_t maxBytes = std::int64_t { 1 } << 32; ///< pixels and the codec's working memory together

    /// Three quarters of the memory that is free at this moment, the control group's limit included.
    [[nodiscard]] static Limits OfThisMachine();

    /// Checks a picture of `width` x `height` pixels whose decoder needs `workingBytes` beside the pixels.
    /// Raises Fault::NoPixels for a side below 1, Fault::SideOutOfRange for one over maxSide,
    /// Fault::PixelsOverLimit over maxBytes.
    void Check(std::int64_t width, std::int64_t height, std::int64_t workingBytes = 0) const;
};

} // namespace veltrane::imaging
