#pragma once

#include <algorithm>
#include <cstdint>

#include "imaging/Fault.h"

namespace veltrane::imaging::pict {

/// The work that one picture may cause, in pixels painted: about a thousand millionth of a second each. A
/// two-byte opcode can paint the whole frame, so a file's length alone bounds nothing: this does.
class Budget {
public:
    /// Any real drawing stays far below: the frame sixteen times over (once, and a thousand million, when
    /// that is less), a thousand pixels for each byte of the file, and a flat quarter of a thousand million.
    Budget(std::int64_t framePixels, std::int64_t fileBytes) noexcept
        : left(framePixels + std::min<std::int64_t>(framePixels * 15, 1'000'000'000)
            + std::min(fileBytes, std::int64_t { 1 } << 20) * 1000 + 256'000'000)
    {
    }

    [[nodiscard]] std::int64_t Left() const noexcept { return left; }

    /// Raises Fault once the work is more than was granted.
    void Charge(std::int64_t work)
    {
        left -= work;
        if (left < 0)
            throw Fault(Fault::PictDrawingOutOfProportion);
    }

private:
    std::int64_t left;
};

} // namespace veltrane::imaging::pict
