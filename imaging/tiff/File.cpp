#include "imaging/tiff/File.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include <tiffio.h>

#include "imaging/Fault.h"

namespace veltrane::imaging {

/// The bytes as the library's stream, and what it said.
struct TiffFile::Source {
    Bytes bytes;
    std::uint64_t position = 0;
    bool ranShort = false;
    bool inPixels = false;
    bool damaged = false;

    static Source& Of(thandle_t handle) noexcept { return *static_cast<Source*>(handle); }

    static tmsize_t Read(thandle_t handle, void* to, tmsize_t wanted) noexcept
    {
        Source& self = Of(handle);
        const std::uint64_t size = self.bytes.size();
        const std::uint64_t left = size - std::min(self.position, size);
        const std::uint64_t given = std::min(left, static_cast<std::uint64_t>(std::max<tmsize_t>(wanted, 0)));
        std::copy_n(self.bytes.data() + (size - left), given, static_cast<std::uint8_t*>(to));
        self.position += given;
        self.ranShort |= given != static_cast<std::uint64_t>(wanted);
        return static_cast<tmsize_t>(given);
    }
    static tmsize_t Write(thandle_t, void*, tmsize_t) noexcept { return -1; }
    static toff_t Seek(thandle_t handle, toff_t to, int whence) noexcept
    {
        Source& self = Of(handle);
        const std::uint64_t from = whence == SEEK_SET ? 0
            : whence == SEEK_CUR                      ? self.position
                                                      : self.bytes.size();
        self.position = from + to;
        return self.position;
    }
    static int Close(thandle_t) noexcept { return 0; }
    static toff_t Size(thandle_t handle) noexcept { return Of(handle).bytes.size(); }

    static int OnError(TIFF*, void* user, const char*, const char*, va_list) noexcept
    {
        Source& self = *static_cast<Source*>(user);
        self.damaged |= self.inPixels;
        return 1;
    }
    static int OnWarning(TIFF*, void* user, const char* module, const char* format, va_list values) noexcept
    {
        Source& self = *static_cast<Source*>(user);
        if (self.inPixels && module != nullptr) {
            std::array<char, 512> text {};
            std::vsnprintf(text.data(), text.size(), format, values);
            self.damaged |= TellsDamage(module, text.data());
        }
        return 1;
    }
    static bool TellsDamage(std::string_view module, std::string_view text) noexcept;
};

// The fax and JPEG decoders go on with made-up pixels after a mere warning. What JPEG warnings tell of the
// bytes between its segments, or of versions, leaves the pixels as they were meant.
bool TiffFile::Source::TellsDamage(std::string_view module, std::string_view text) noexcept
{
    constexpr std::string_view kHarmless[] { "extraneous bytes before marker", "JFIF", "Adobe" };
    const auto tells = [&](std::string_view words) { return text.find(words) != std::string_view::npos; };
    if (module.starts_with("Fax"))
        return true;
    if (module == "JPEGPreDecode") // fewer pixels than the strip or tile has: the others are not touched
        return tells("Improper JPEG strip/tile size");
    if (module == "JPEGLib" || module == "LibJpeg")
        return std::ranges::none_of(kHarmless, tells);
    return false;
}

void TiffFile::Closer::operator()(tiff* file) const noexcept
{
    TIFFClose(file);
}

namespace {

struct OptionsFree {
    void operator()(TIFFOpenOptions* options) const noexcept { TIFFOpenOptionsFree(options); }
};

} // namespace

TiffFile::TiffFile(Bytes file, const Limits& limits)
    : source(std::make_unique<Source>()), page(FindPage(file))
{
    limits.Check(page.width, page.height);
    source->bytes = file;
    const std::unique_ptr<TIFFOpenOptions, OptionsFree> options(TIFFOpenOptionsAlloc());
    if (!options)
        throw Fault(Fault::NoMemory);
    // The page's own needs are checked before they arise; this bounds what a tag makes the library take.
    constexpr std::int64_t kAlwaysFine = 16 << 20;
    TIFFOpenOptionsSetMaxSingleMemAlloc(
        options.get(), static_cast<tmsize_t>(std::max(limits.maxBytes, kAlwaysFine)));
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), Source::OnError, source.get());
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), Source::OnWarning, source.get());
    // h: no page yet; c: strips as they are, not cut up; m: read, never mapped; D: tables of strips when
    // they are asked for, which is after the picture's size was checked.
    handle.reset(TIFFClientOpenExt("", "rhcmD", source.get(), Source::Read, Source::Write, Source::Seek,
        Source::Close, Source::Size, nullptr, nullptr, options.get()));
    if (!handle || TIFFSetSubDirectory(handle.get(), page.offset) == 0)
        throw Fault(source->ranShort ? Fault::TiffIncomplete : Fault::TiffDamaged);
}

TiffFile::~TiffFile() = default;

Bytes TiffFile::Contents() const noexcept
{
    return source->bytes;
}

void TiffFile::BeginPixels() noexcept
{
    source->inPixels = true;
    source->ranShort = false;
}

void TiffFile::CheckPixels(bool fine) const
{
    if (!fine || source->damaged)
        throw Fault(source->ranShort ? Fault::TiffIncomplete : Fault::TiffDamaged);
}

} // namespace veltrane::imaging
