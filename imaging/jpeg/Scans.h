#pragma once

#include <cstdint>

struct jpeg_decompress_struct;

namespace veltrane::imaging::jpeg {

/// Follows the scans of a picture: bounds the work that a file can ask for, and knows whether the picture is
/// complete.
class Scans {
public:
    /// Called from time to time while scans are read. Returns false when the file asks for more than pictures
    /// do.
    [[nodiscard]] bool Continue(const jpeg_decompress_struct& library) noexcept;

    /// Whether every component is complete after the last scan. `cutOff`: the file has ended without EOI, so
    /// that scans may be missing.
    [[nodiscard]] bool Complete(const jpeg_decompress_struct& library, bool cutOff) const noexcept;

    /// Bytes that the library holds at once besides the caller's pixels.
    [[nodiscard]] static std::int64_t WorkingBytes(const jpeg_decompress_struct& library) noexcept;

private:
    [[nodiscard]] bool WithinBudget(const jpeg_decompress_struct& library) const noexcept;

    int last = 0; // the last scan that was looked at, from 1
    std::uint32_t components = 0; // those that a scan has contained, a bit each
    std::int64_t afterEnd = 0; // pixels decoded since a marker ended the entropy-coded segment
};

} // namespace veltrane::imaging::jpeg
