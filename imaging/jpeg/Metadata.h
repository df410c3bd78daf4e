#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "imaging/bits/Bytes.h"
#include "imaging/pixels/Orientation.h"

namespace veltrane::imaging::jpeg {

/// What the application segments before the pixels say. Holds views into the file and copies nothing.
class Metadata {
public:
    /// Reads an APP1 or APP2 segment without its length bytes. Allocates nothing: the library calls it.
    void AddApp1(Bytes segment) noexcept;
    void AddApp2(Bytes segment) noexcept;

    /// The orientation of the first Exif segment. Source: Exif 2.32, 4.7.2.
    [[nodiscard]] Orientation Turn() const noexcept { return orientation; }

    /// The ICC profile, assembled from its parts; empty when there is none or a part is missing.
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
