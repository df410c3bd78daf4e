#include "imaging/jpeg/Sample.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include <jpeglib.h>

#include "imaging/jpeg/Trap.h"

namespace veltrane::imaging::jpeg {

namespace {

constexpr int kMcu = 16; // pixels: the side of the largest MCU that is written
constexpr int kPieceWidth = 16 * kMcu;
constexpr int kMostPieces = 1024; // four million pixels: more would change nothing
static_assert(kMostPieces * kMcu <= JPEG_MAX_DIMENSION); // they are encoded as one picture

// Pixels up to which the library makes the tables from the whole picture.
constexpr std::int64_t kSmall = 1 << 18;

struct Memory final : Sink {
    std::vector<std::uint8_t> bytes;
    void Write(Bytes more) override { bytes.insert(bytes.end(), more.begin(), more.end()); }
};

// The places of the pieces: evenly spaced from top to bottom, and spread across by the golden ratio so that
// they never line up.
struct Pieces {
    int width, count;

    Pieces(const OnWhite& picture, const Form& whole)
        : width(std::min(whole.width / kMcu * kMcu, kPieceWidth)), picture(picture), whole(whole)
    {
        constexpr std::int64_t kShare = 48; // one pixel of so many is sampled; measured
        constexpr std::int64_t kFewest = 1 << 17; // but not fewer
        const std::int64_t pixels = std::int64_t { whole.width } * whole.height;
        const std::int64_t wanted = std::max(pixels / kShare, kFewest);
        const std::int64_t pieces = wanted / (std::int64_t { width } * kMcu);
        count = static_cast<int>(std::min<std::int64_t>(pieces, kMostPieces));
    }

    void CopyRow(int piece, int row, std::uint8_t* rgba) const
    {
        constexpr double kGolden = 0.6180339887498949;
        const double turns = piece * kGolden;
        const int places = (whole.width - width) / kMcu + 1;
        const int across = static_cast<int>((turns - std::floor(turns)) * places);
        const std::int64_t down = std::int64_t { piece } * (whole.height / kMcu) / count;
        picture.Copy(across * kMcu, static_cast<int>(down) * kMcu + row, width, rgba);
    }

private:
    const OnWhite& picture;
    const Form& whole;
};

// The pieces below each other, encoded with the picture's options and any tables.
Memory CodedPieces(const Pieces& pieces, Form form)
{
    const Tables any { { TablesFor({}), TablesFor({}) } };
    form.width = pieces.width;
    form.height = pieces.count * kMcu;
    form.tables = &any;
    Memory coded;
    Writer writer(form, coded);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(pieces.width) * Bitmap::kBytesPerPixel);
    for (int y = 0; y < form.height; ++y) {
        pieces.CopyRow(y / kMcu, y % kMcu, row.data());
        writer.Rows(row.data(), row.size(), 1);
    }
    writer.Finish();
    return coded;
}

struct Coefficients {
    Trap trap;
    jpeg_decompress_struct jpeg {};
    jvirt_barray_ptr* arrays = nullptr;

    explicit Coefficients(Bytes file)
    {
        jpeg.err = trap.Errors();
        trap.Run([this, file] {
            jpeg_create_decompress(&jpeg);
            jpeg_mem_src(&jpeg, file.data(), file.size());
            jpeg_read_header(&jpeg, TRUE);
            arrays = jpeg_read_coefficients(&jpeg);
        });
    }
    ~Coefficients() { jpeg_destroy_decompress(&jpeg); }
    Coefficients(const Coefficients&) = delete;
    Coefficients& operator=(const Coefficients&) = delete;

    [[nodiscard]] int Components() const { return jpeg.num_components; }
    void Count(int component, Counts& counts);
};

// Counts one row of MCUs in the order of the scan. The first block's DC difference is left out: the block
// before it is not the one before it in the picture.
void CountLine(JBLOCKARRAY rows, const jpeg_component_info& part, Counts& counts)
{
    const auto across = static_cast<JDIMENSION>(part.h_samp_factor);
    int before = rows[0][0][0];
    for (JDIMENSION unit = 0; unit + across <= part.width_in_blocks; unit += across) {
        for (int y = 0; y < part.v_samp_factor; ++y) {
            for (JDIMENSION x = unit; x < unit + across; ++x) {
                const JCOEF* const block = rows[y][x];
                counts.Add(block, before);
                before = block[0];
            }
        }
    }
    --counts.dc[0];
}

void Coefficients::Count(int component, Counts& counts)
{
    trap.Run([this, component, &counts] {
        const jpeg_component_info& part = jpeg.comp_info[component];
        const auto down = static_cast<JDIMENSION>(part.v_samp_factor);
        for (JDIMENSION y = 0; y + down <= part.height_in_blocks; y += down) {
            const auto rows = (*jpeg.mem->access_virt_barray)(
                reinterpret_cast<j_common_ptr>(&jpeg), arrays[component], y, down, FALSE);
            CountLine(rows, part, counts);
        }
    });
}

} // namespace

std::optional<Tables> SampledTables(const OnWhite& picture, const Form& form)
{
    const bool narrow = form.width < kMcu || form.height < kMcu;
    if (narrow || std::int64_t { form.width } * form.height <= kSmall)
        return std::nullopt;
    const Memory coded = CodedPieces(Pieces(picture, form), form);
    Coefficients coefficients(coded.bytes);
    std::array<Counts, 2> counts;
    for (int i = 0; i < coefficients.Components(); ++i)
        coefficients.Count(i, counts[i == 0 ? 0 : 1]);
    return Tables { { TablesFor(counts[0]), TablesFor(counts[1]) } };
}

} // namespace veltrane::imaging::jpeg
