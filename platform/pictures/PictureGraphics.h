#pragma once

#include "platform/pictures/Graphics.h"
#include "platform/pictures/Picture.h"

namespace veltrane {

/// A surface that draws into a picture's pixels; holds the picture.
class PictureGraphics final : public Graphics {
public:
    explicit PictureGraphics(Ref<Picture> target) noexcept : target(std::move(target)) { }

    [[nodiscard]] std::int64_t Width() const override { return target->Width(); }
    [[nodiscard]] std::int64_t Height() const override { return target->Height(); }
    void FillRect(double x, double y, double width, double height) override;

    /// A whole picture onto one of its own size at the origin shares the pixels instead of copying them,
    /// which is exact: either picture gets its own at the first write. Draws that make a part of the
    /// picture smaller take the average of what each pixel covers; others take the nearest pixel.
    void DrawPicture(const Ref<Picture>& picture, double x, double y, double destinationWidth,
        double destinationHeight, double sourceX, double sourceY, double sourceWidth,
        double sourceHeight) override;

private:
    Ref<Picture> target;
};

} // namespace veltrane
