#pragma once

#include "platform/widgets/Rect.h"

namespace veltrane {

/// Where a picture of `pictureWidth` x `pictureHeight` goes on a surface: whole, its proportions held,
/// never enlarged, centred; of an odd gap the odd point goes to the right or the bottom. A side can come
/// out as 0 for a picture much longer than wide. Products are formed in integers, quotients truncated.
[[nodiscard]] Rect FitCentred(
    std::int64_t pictureWidth, std::int64_t pictureHeight, std::int64_t width, std::int64_t height);

} // namespace veltrane
