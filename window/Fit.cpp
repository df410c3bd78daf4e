#include "window/Fit.h"

namespace veltrane {

namespace {

// side * other / divisor, the product in integers, the quotient truncated toward zero.
std::int64_t Proportion(std::int64_t side, std::int64_t other, std::int64_t divisor)
{
    return static_cast<std::int64_t>(static_cast<double>(side * other) / static_cast<double>(divisor));
}

} // namespace

Rect FitCentred(
    std::int64_t pictureWidth, std::int64_t pictureHeight, std::int64_t width, std::int64_t height)
{
    std::int64_t fitWidth = pictureWidth;
    std::int64_t fitHeight = pictureHeight;
    if (width < pictureWidth) {
        fitWidth = width;
        fitHeight = Proportion(width, pictureHeight, pictureWidth);
    }
    // From the picture's own sides again, not from the first step's rounded ones.
    if (height < fitHeight) {
        fitHeight = height;
        fitWidth = Proportion(height, pictureWidth, pictureHeight);
    }
    const auto half
        = [](std::int64_t gap) { return static_cast<std::int64_t>(static_cast<double>(gap) / 2.0); };
    return { half(width - fitWidth), half(height - fitHeight), fitWidth, fitHeight };
}

} // namespace veltrane
