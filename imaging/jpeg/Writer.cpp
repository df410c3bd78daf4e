#include "imaging/jpeg/Writer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <exception>

#include <jpeglib.h>

#include "imaging/colour/SrgbProfile.h"
#include "imaging/jpeg/Trap.h"

namespace veltrane::imaging::jpeg {

struct Writer::Library {
    Trap trap;
    Sink& sink;
    jpeg_destination_mgr destination {};
    jpeg_compress_struct jpeg {};
    std::array<std::uint8_t, 64 * 1024> buffer {};

    explicit Library(Sink& sink);
    ~Library() { jpeg_destroy_compress(&jpeg); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    [[nodiscard]] static Library& Of(j_compress_ptr jpeg)
    {
        return *static_cast<Library*>(jpeg->client_data);
    }

    void Rewind()
    {
        destination.next_output_byte = buffer.data();
        destination.free_in_buffer = buffer.size();
    }
    void Flush(std::size_t bytes) noexcept;
};

// The library calls it, and no exception may pass through the library.
void Writer::Library::Flush(std::size_t bytes) noexcept
{
    bool failed = false;
    try {
        sink.Write(Bytes(buffer).first(bytes));
    } catch (...) {
        trap.Keep(std::current_exception());
        failed = true;
    }
    if (failed)
        trap.Leave();
}

Writer::Library::Library(Sink& sink) : sink(sink)
{
    jpeg.err = trap.Errors();
    destination.init_destination = [](j_compress_ptr common) { Of(common).Rewind(); };
    destination.empty_output_buffer = [](j_compress_ptr common) -> boolean {
        Library& library = Of(common);
        library.Flush(library.buffer.size());
        library.Rewind();
        return TRUE;
    };
    destination.term_destination = [](j_compress_ptr common) {
        Library& library = Of(common);
        library.Flush(library.buffer.size() - library.destination.free_in_buffer);
    };
    trap.Run([this] {
        jpeg_create_compress(&jpeg);
        jpeg.client_data = this;
        jpeg.dest = &destination;
    });
}

namespace {

// Below this quality nobody sees the loss of chroma subsampling, and the file is a third smaller.
constexpr int kFullColourFrom = 90;

void Install(const Table& table, JHUFF_TBL& target)
{
    std::ranges::copy(table.codes, target.bits);
    std::ranges::copy(table.symbols, target.huffval);
    target.sent_table = FALSE;
}

void Configure(jpeg_compress_struct& jpeg, const Form& form)
{
    jpeg.image_width = static_cast<JDIMENSION>(form.width);
    jpeg.image_height = static_cast<JDIMENSION>(form.height);
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&jpeg);
    jpeg_set_colorspace(&jpeg, form.grey ? JCS_GRAYSCALE : JCS_YCbCr);
    jpeg_set_quality(&jpeg, form.quality, TRUE);
    const int luma = !form.grey && form.quality < kFullColourFrom ? 2 : 1;
    jpeg.comp_info[0].h_samp_factor = luma;
    jpeg.comp_info[0].v_samp_factor = luma;
    jpeg.optimize_coding = form.tables == nullptr ? TRUE : FALSE;
    for (std::size_t i = 0; form.tables != nullptr && i < form.tables->of.size(); ++i) {
        Install(form.tables->of[i].dc, *jpeg.dc_huff_tbl_ptrs[i]);
        Install(form.tables->of[i].ac, *jpeg.ac_huff_tbl_ptrs[i]);
    }
}

} // namespace

Writer::Writer(const Form& form, Sink& sink) : library(std::make_unique<Library>(sink))
{
    Library& l = *library;
    const Bytes profile = form.grey ? SrgbGreyProfile() : SrgbProfile();
    l.trap.Run([&l, &form, profile] {
        Configure(l.jpeg, form);
        jpeg_start_compress(&l.jpeg, TRUE);
        jpeg_write_icc_profile(&l.jpeg, profile.data(), static_cast<unsigned>(profile.size()));
    });
}

Writer::~Writer() = default;

void Writer::Rows(const std::uint8_t* rgba, std::size_t stride, int count)
{
    constexpr int kAtOnce = 16;
    Library& l = *library;
    std::array<JSAMPROW, kAtOnce> rows {};
    for (int done = 0; done < count;) {
        const int now = std::min(count - done, kAtOnce);
        for (int i = 0; i < now; ++i) {
            // The library's rows are not const, but it only reads them.
            const std::uint8_t* const row = rgba + static_cast<std::size_t>(done + i) * stride;
            rows[static_cast<std::size_t>(i)] = const_cast<JSAMPROW>(row);
        }
        l.trap.Run(
            [&l, &rows, now] { jpeg_write_scanlines(&l.jpeg, rows.data(), static_cast<JDIMENSION>(now)); });
        done += now;
    }
}

void Writer::Finish()
{
    library->trap.Run([this] { jpeg_finish_compress(&library->jpeg); });
}

} // namespace veltrane::imaging::jpeg
