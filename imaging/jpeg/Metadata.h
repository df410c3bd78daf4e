#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "imaging/bits/Bytes.h"
#include "imaging/pixels/Orientation.h"

namespace veltrane::imaging::jpeg {

/// What the application segments in front of the pixels tell. Holds views into the file, copies nothing.
class Metadata {
public:
    /// Takes in an APP1 or APP2 segment, its length bytes taken off. Allocates nothing: it is called from
    /// inside the library.
    void AddApp1(Bytes segment) noexcept;
    void AddApp2(Bytes segment) noexcept;

    /// As the first Exif segment tells. Source: Exif 2.32, 4.7.2.
    [[nodiscard]] Orientation Turn() const noexcept { return orientation; }

    /// The ICC profile, put together from its parts; empty when there is none, or a part is missing.
    /// Source: ICC.1:2010, B.4.
    [[nodiscard]] std::vector<std::uint8_t> Profile() const;

private:
    struct Part {
        int number = 0; // counted from 1
        int count = 0;
        Bytes bytes;
    };
    static constexpr std::size_t kMostParts = 255;

    [[nodiscard]] const Part* Find(int number) const noexcept;

    Orientation orientation = Orientation::TopLeft;
    bool sawExif = false;
    std::array<Part, kMostParts> parts {};
    std::size_t partCount = 0;
};

} // namespace veltrane::imaging::jpeg
