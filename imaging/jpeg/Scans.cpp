#include "imaging/jpeg/Scans.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

namespace veltrane::imaging::jpeg {

namespace {

std::int64_t Pixels(const jpeg_decompress_struct& library)
{
    return std::int64_t { library.image_width } * library.image_height;
}

// Whether all bits of all coefficients have been decoded: T.81, G.1.1.1.
bool AllBits(const int (&bits)[DCTSIZE2])
{
    return std::all_of(bits, bits + DCTSIZE2, [](int missing) { return missing == 0; });
}

} // namespace

// A scan costs a walk over all coefficients even when its own bytes are few. Encoders write up to 24 scans
// (six for each component of CMYK); pictures with more are free to do so while that stays a matter of
// seconds.
bool Scans::WithinBudget(const jpeg_decompress_struct& library) const noexcept
{
    constexpr std::int64_t kUsual = 25;
    constexpr std::int64_t kSetUp = 1 << 16; // what starting a scan costs, in pixels
    constexpr std::int64_t kMostWork = std::int64_t { 1 } << 32;
    return last <= kUsual || last <= kMostWork / (Pixels(library) + kSetUp);
}

bool Scans::Continue(const jpeg_decompress_struct& library) noexcept
{
    if (library.input_scan_number != last) {
        last = library.input_scan_number;
        for (int i = 0; i < library.comps_in_scan; ++i)
            components |= 1u << library.cur_comp_info[i]->component_index;
    }
    // An arithmetic decoder may decode the last pixels from zeros that the encoder has left out (T.81,
    // D.1.8), but not a whole large picture.
    constexpr std::int64_t kMostAfterEnd = 1 << 24;
    const bool ended = library.arith_code != 0 && library.unread_marker != 0;
    afterEnd
        = ended ? afterEnd + std::int64_t { library.image_width } * library.max_v_samp_factor * DCTSIZE : 0;
    return afterEnd <= kMostAfterEnd && WithinBudget(library);
}

bool Scans::Complete(const jpeg_decompress_struct& library, bool cutOff) const noexcept
{
    const std::uint32_t all = (1u << library.num_components) - 1;
    if (components != all)
        return false;
    if (library.coef_bits == nullptr)
        return true;
    for (int i = 0; i < library.num_components; ++i) {
        if (cutOff ? !AllBits(library.coef_bits[i]) : library.coef_bits[i][0] < 0)
            return false;
    }
    return true;
}

std::int64_t Scans::WorkingBytes(const jpeg_decompress_struct& library) noexcept
{
    const auto roundUp = [](std::int64_t value, int step) { return (value + step - 1) / step * step; };
    const bool holdsAll = library.progressive_mode != 0 || library.comps_in_scan < library.num_components;
    std::int64_t bytes = 0;
    for (int i = 0; i < library.num_components; ++i) {
        const jpeg_component_info& part = library.comp_info[i];
        const std::int64_t across = roundUp(part.width_in_blocks, part.h_samp_factor);
        const std::int64_t down
            = holdsAll ? roundUp(part.height_in_blocks, part.v_samp_factor) : 4 * part.v_samp_factor;
        bytes += across * down * static_cast<std::int64_t>(sizeof(JBLOCK));
    }
    return bytes;
}

} // namespace veltrane::imaging::jpeg
