#pragma once

#include <memory>

#include "imaging/pixels/Bitmap.h"

namespace veltrane::qt {

/// The toolkit's smooth scaling, to measure ours against.
class PeerScaler {
public:
    /// Puts the picture into the toolkit's fastest form, which is no part of what is measured.
    explicit PeerScaler(const imaging::Bitmap& picture);
    ~PeerScaler();
    PeerScaler(const PeerScaler&) = delete;
    PeerScaler& operator=(const PeerScaler&) = delete;

    /// Scales the whole picture; gives a byte of the result.
    [[nodiscard]] int Scale(int width, int height) const;

private:
    struct Source;
    std::unique_ptr<Source> source;
};

} // namespace veltrane::qt
