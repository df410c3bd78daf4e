#pragma once

#include <cstdint>
#include <memory>

#include "imaging/bits/Sink.h"
#include "imaging/jpeg/Tables.h"

namespace veltrane::imaging::jpeg {

/// How a picture is written.
struct Form {
    int width = 0;
    int height = 0;
    int quality = 75; ///< 0 to 100
    bool grey = false; ///< one component, from pixels whose red, green and blue are equal
    const Tables* tables = nullptr; ///< read by the constructor; null: the best ones, for which the whole
                                    ///< picture is held until Finish
};

/// A JPEG file being written, rows from top to bottom. Every operation raises what the sink raises, and
/// Fault::NoMemory.
class Writer {
public:
    /// Writes everything before the pixels. `sink` must outlive this object.
    Writer(const Form& form, Sink& sink);
    ~Writer();
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    /// The next `count` rows: 4 bytes a pixel, the fourth ignored, rows `stride` bytes apart.
    void Rows(const std::uint8_t* rgba, std::size_t stride, int count);

    /// Must follow the last row: writes what is left and EOI.
    void Finish();

private:
    struct Library;

    std::unique_ptr<Library> library;
};

} // namespace veltrane::imaging::jpeg
