#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "imaging/Limits.h"
#include "imaging/bits/Bytes.h"
#include "imaging/bits/Sink.h"
#include "imaging/pixels/Bitmap.h"

namespace veltrane::imaging {

/// How many bytes a probe gets to see.
constexpr std::size_t kProbeBytes = 1024;

/// One file format. Every module under imaging/ fills exactly one of these.
///
/// For any bytes, decode gives a picture or raises Fault or std::bad_alloc: nothing else.
struct Codec {
    std::string_view name; ///< the format's name as people write it: "JPEG"

    /// Whether the file is ours, from its first kProbeBytes bytes (fewer when it is shorter).
    bool (*probe)(Bytes head) noexcept;

    /// The picture as it was meant to be seen: upright, in sRGB, the first frame or page.
    Bitmap (*decode)(Bytes file, const Limits& limits);

    /// Writes the whole file. `quality` is 0 to 100, or -1 for the encoder's choice. Raises what the sink
    /// raises, Fault::NoMemory and std::bad_alloc. Null: the format is only read.
    void (*encode)(const Bitmap& picture, int quality, Sink& sink);
};

/// All formats, in the order in which they are probed.
[[nodiscard]] std::span<const Codec* const> All() noexcept;

/// The codec that claims a file with this beginning, or null. `head`: its first kProbeBytes bytes.
[[nodiscard]] const Codec* Find(Bytes head) noexcept;

/// Installs the codec that is asked when no other claims a file. It must outlive the program's use of
/// codecs; null takes it away.
void RegisterFallback(const Codec* codec) noexcept;

} // namespace veltrane::imaging
