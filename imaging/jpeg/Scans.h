#pragma once

#include <cstdint>

struct jpeg_decompress_struct;

namespace veltrane::imaging::jpeg {

/// Follows the scans of a picture: bounds the work that a file can ask for, and tells whether everything
/// has come.
class Scans {
public:
    /// To be called now and then while scans are read. False when the file asks for more than pictures do.
    [[nodiscard]] bool Continue(const jpeg_decompress_struct& library) noexcept;

    /// Whether every component has come in full. Asked when the last scan has been read; `cutOff` when the
    /// file has ended there without its end mark, so that scans may be missing.
    [[nodiscard]] bool Complete(const jpeg_decompress_struct& library, bool cutOff) const noexcept;

    /// Bytes that the library will hold at once beside the caller's pixels.
    [[nodiscard]] static std::int64_t WorkingBytes(const jpeg_decompress_struct& library) noexcept;

private:
    [[nodiscard]] bool WithinBudget(const jpeg_decompress_struct& library) const noexcept;

    int last = 0; // the scan seen last, from 1
    std::uint32_t components = 0; // those that a scan has brought, a bit each
    std::int64_t behindEnd = 0; // pixels decoded since a marker ended the coded data
};

} // namespace veltrane::imaging::jpeg
