#pragma once

#include <cstdint>

#include "imaging/pixels/Bitmap.h"
#include "platform/files/FolderItem.h"
#include "platform/pictures/Graphics.h"
#include "platform/values/Ref.h"

namespace veltrane {

/// Format codes of Picture::Save.
enum FormatCode : std::int64_t {
    FormatCodePNG = 150,
    FormatCodeJPEG = 151,
};

/// A picture in memory, with an alpha channel.
class Picture final : public Counted {
public:
    /// Quality of Save: the encoder chooses.
    static constexpr std::int64_t DefaultQuality = -1;

    /// A transparent picture of that size in pixels.
    /// Raises OutOfBoundsException unless both are in 1 to 32767, OutOfMemoryException.
    Picture(std::int64_t width, std::int64_t height);

    /// Decodes the file; its content decides the format. Never nil.
    /// Raises NilObjectException for nil, IOException (cannot be read), UnsupportedFormatException (not
    /// understood, or damaged), OutOfBoundsException (a side over 32767), OutOfMemoryException.
    [[nodiscard]] static Ref<Picture> Open(const Ref<FolderItem>& file);

    [[nodiscard]] std::int64_t Width() const noexcept { return pixels.Width(); }
    [[nodiscard]] std::int64_t Height() const noexcept { return pixels.Height(); }

    /// A surface that draws into this picture, and keeps it alive.
    [[nodiscard]] Ref<veltrane::Graphics> Graphics();

    /// Writes the picture, whole or not at all: an existing file is replaced in one step.
    /// `format` is a FormatCode, `quality` 0 to 100 or DefaultQuality.
    /// Raises OutOfBoundsException for another quality, NilObjectException for a nil file,
    /// UnsupportedOperationException for another format, IOException, OutOfMemoryException.
    void Save(const Ref<FolderItem>& file, std::int64_t format, std::int64_t quality) const;

    /// The pixels, for bodies that show them.
    [[nodiscard]] const imaging::Bitmap& Pixels() const noexcept { return pixels; }
    [[nodiscard]] imaging::Bitmap& Pixels() noexcept { return pixels; }

private:
    template<class T, class... Args>
    friend Ref<T> New(Args&&... args);
    explicit Picture(imaging::Bitmap decoded) noexcept : pixels(std::move(decoded)) { }

    imaging::Bitmap pixels;
};

} // namespace veltrane
