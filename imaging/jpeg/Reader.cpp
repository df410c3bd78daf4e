#include "imaging/jpeg/Reader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

#include "imaging/Fault.h"
#include "imaging/jpeg/Scans.h"
#include "imaging/jpeg/Trap.h"
#include "imaging/jpeg/baseline/Decoder.h"
#include "imaging/pixels/Orientation.h"

namespace veltrane::imaging::jpeg {

struct Reader::Library {
    Trap trap;
    Metadata metadata;
    Scans scans;
    jpeg_progress_mgr progress {};
    jpeg_decompress_struct jpeg {};
    Layout layout = Layout::Rgba;
    std::unique_ptr<baseline::Decoder>
        ours; // our decoder, while it can go on; then the library decodes the rest
    int given = 0; // rows returned so far

    Library();
    ~Library() { jpeg_destroy_decompress(&jpeg); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    [[nodiscard]] static Library& Of(void* jpeg)
    {
        return *static_cast<Library*>(static_cast<j_common_ptr>(jpeg)->client_data);
    }

    void ReadHeader(Bytes file);
    void CheckSize(const Limits& limits) const;
    void Start();
    void TakeOver(std::uint8_t* anyRow);
    [[nodiscard]] int Rows(std::uint8_t* target, std::size_t stride, int most);
};

namespace {

// The whole file is in memory, so a segment is read in place. A segment that claims more bytes than there are
// ends the file.
Bytes TakeSegment(jpeg_source_mgr& source)
{
    const std::size_t left = source.bytes_in_buffer;
    const std::size_t length
        = left < 2 ? 0 : static_cast<std::size_t>(source.next_input_byte[0] << 8 | source.next_input_byte[1]);
    if (length < 2 || length > left) {
        source.bytes_in_buffer = 0;
        return {};
    }
    const Bytes segment(source.next_input_byte + 2, length - 2);
    source.next_input_byte += length;
    source.bytes_in_buffer -= length;
    return segment;
}

J_COLOR_SPACE ColourSpace(Layout layout)
{
    switch (layout) {
    case Layout::Grey: return JCS_GRAYSCALE;
    case Layout::Cmyk: return JCS_CMYK;
    case Layout::Rgba: break;
    }
    return JCS_EXT_RGBA;
}

} // namespace

Reader::Library::Library()
{
    jpeg.err = trap.Errors();
    progress.progress_monitor = [](j_common_ptr common) {
        Library& library = Of(common);
        if (!library.scans.Continue(library.jpeg))
            library.trap.LeaveDamaged();
    };
    trap.Run([this] {
        jpeg_create_decompress(&jpeg);
        jpeg.client_data = this;
        jpeg.progress = &progress;
        jpeg_set_marker_processor(&jpeg, JPEG_APP0 + 1, [](j_decompress_ptr common) -> boolean {
            Of(common).metadata.AddApp1(TakeSegment(*common->src));
            return TRUE;
        });
        jpeg_set_marker_processor(&jpeg, JPEG_APP0 + 2, [](j_decompress_ptr common) -> boolean {
            Of(common).metadata.AddApp2(TakeSegment(*common->src));
            return TRUE;
        });
    });
}

void Reader::Library::ReadHeader(Bytes file)
{
    trap.Run([this, file] {
        jpeg_mem_src(&jpeg, file.data(), file.size());
        jpeg_read_header(&jpeg, TRUE);
    });
    if (jpeg.arith_code)
        trap.EndIsDamage();
}

void Reader::Library::CheckSize(const Limits& limits) const
{
    const std::int64_t turning
        = UprightRows::WorkingBytes(static_cast<int>(jpeg.image_width), metadata.Turn());
    limits.Check(jpeg.image_width, jpeg.image_height, Scans::WorkingBytes(jpeg) + turning);
    constexpr std::array kRead { JCS_GRAYSCALE, JCS_YCbCr, JCS_RGB, JCS_CMYK, JCS_YCCK };
    if (std::ranges::find(kRead, jpeg.jpeg_color_space) == kRead.end())
        throw Fault(Fault::JpegComponentsNotSupported);
}

Reader::Reader(Bytes file, const Limits& limits) : library(std::make_unique<Library>())
{
    library->ReadHeader(file);
    library->CheckSize(limits);
}

Reader::~Reader() = default;

int Reader::Width() const noexcept
{
    return static_cast<int>(library->jpeg.image_width);
}

int Reader::Height() const noexcept
{
    return static_cast<int>(library->jpeg.image_height);
}

Kind Reader::Stored() const noexcept
{
    switch (library->jpeg.jpeg_color_space) {
    case JCS_GRAYSCALE: return Kind::Grey;
    case JCS_CMYK:
    case JCS_YCCK: return Kind::Cmyk;
    default: return Kind::Colour;
    }
}

bool Reader::InvertedCmyk() const noexcept
{
    return library->jpeg.saw_Adobe_marker != 0;
}

const Metadata& Reader::Segments() const noexcept
{
    return library->metadata;
}

void Reader::Library::Start()
{
    trap.Run([this] {
        jpeg.out_color_space = ColourSpace(layout);
        jpeg_start_decompress(&jpeg);
        const bool severalScans = jpeg_has_multiple_scans(&jpeg) != 0;
        if (severalScans && !scans.Complete(jpeg, trap.SawEnd()))
            trap.LeaveDamaged();
    });
}

int Reader::Library::Rows(std::uint8_t* target, std::size_t stride, int most)
{
    constexpr int kAtOnce = 16; // the library never has more rows ready
    std::array<std::uint8_t*, kAtOnce> rows {};
    const int count = std::min(most, kAtOnce);
    for (int i = 0; i < count; ++i)
        rows[static_cast<std::size_t>(i)] = target + static_cast<std::size_t>(i) * stride;
    const JDIMENSION before = jpeg.output_scanline;
    trap.Run([this, &rows, count] {
        if (jpeg_read_scanlines(&jpeg, rows.data(), static_cast<JDIMENSION>(count)) == 0)
            trap.LeaveDamaged(); // the library waits for data that does not exist
    });
    return static_cast<int>(jpeg.output_scanline - before);
}

// The library decodes the rows that ours has returned once more, all into the same place.
void Reader::Library::TakeOver(std::uint8_t* anyRow)
{
    ours.reset();
    Start();
    for (int left = given; left > 0;)
        left -= Rows(anyRow, 0, left);
}

void Reader::Start(Layout layout)
{
    library->layout = layout;
    if (layout == Layout::Rgba)
        library->ours = baseline::Decoder::For(library->jpeg);
    if (!library->ours)
        library->Start();
}

int Reader::Rows(std::uint8_t* target, std::size_t stride, int most)
{
    Library& l = *library;
    int count = l.ours ? l.ours->Rows(target, stride, most) : 0;
    if (count == 0) {
        if (l.ours)
            l.TakeOver(target);
        count = l.Rows(target, stride, most);
    }
    l.given += count;
    return count;
}

} // namespace veltrane::imaging::jpeg
