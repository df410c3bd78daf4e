#include "imaging/jpeg/baseline/Frame.h"

#include <algorithm>
#include <cstdio>

#include <jpeglib.h>

namespace veltrane::imaging::jpeg::baseline {

namespace {

// One scan of all components in their order, with all bits of all coefficients.
bool IsPlainScan(const jpeg_decompress_struct& header)
{
    if (header.progressive_mode != 0 || header.arith_code != 0 || header.data_precision != 8
        || header.comps_in_scan != header.num_components)
        return false;
    for (int i = 0; i < header.comps_in_scan; ++i)
        if (header.cur_comp_info[i] != header.comp_info + i)
            return false;
    return header.Ss == 0 && header.Se == DCTSIZE2 - 1 && header.Ah == 0 && header.Al == 0;
}

bool IsUsualSampling(const jpeg_decompress_struct& header)
{
    if (header.jpeg_color_space == JCS_GRAYSCALE)
        return true;
    if (header.jpeg_color_space != JCS_YCbCr)
        return false;
    const jpeg_component_info* const parts = header.comp_info;
    const auto isOne
        = [](const jpeg_component_info& part) { return part.h_samp_factor == 1 && part.v_samp_factor == 1; };
    const int across = parts[0].h_samp_factor, down = parts[0].v_samp_factor;
    return isOne(parts[1]) && isOne(parts[2]) && across <= 2 && down <= across;
}

template<class Table>
bool InUse(Table* const (&tables)[NUM_QUANT_TBLS], int number)
{
    return number >= 0 && number < NUM_QUANT_TBLS && tables[number] != nullptr;
}

HuffmanSpec SpecOf(const JHUFF_TBL& table)
{
    HuffmanSpec list {};
    std::copy_n(table.bits, list.counts.size(), list.counts.begin());
    list.counts[0] = 0;
    std::copy_n(table.huffval, list.symbols.size(), list.symbols.begin());
    return list;
}

std::optional<Component> ComponentOf(const jpeg_decompress_struct& header, const jpeg_component_info& part)
{
    static_assert(NUM_QUANT_TBLS == NUM_HUFF_TBLS);
    if (!InUse(header.quant_tbl_ptrs, part.quant_tbl_no) || !InUse(header.dc_huff_tbl_ptrs, part.dc_tbl_no)
        || !InUse(header.ac_huff_tbl_ptrs, part.ac_tbl_no))
        return std::nullopt;
    Component component;
    // A scan of one component goes block by block, whatever its sampling: T.81, A.2.2.
    if (header.num_components > 1) {
        component.across = part.h_samp_factor;
        component.down = part.v_samp_factor;
    }
    std::copy_n(
        header.quant_tbl_ptrs[part.quant_tbl_no]->quantval, kBlockSize, component.quantisation.begin());
    component.dc = SpecOf(*header.dc_huff_tbl_ptrs[part.dc_tbl_no]);
    component.ac = SpecOf(*header.ac_huff_tbl_ptrs[part.ac_tbl_no]);
    return component;
}

} // namespace

std::optional<Frame> ReadFrame(const jpeg_decompress_struct& header)
{
    constexpr JDIMENSION kNarrowest = 16; // the library upsamples narrower pictures differently
    if (header.image_width < kNarrowest || !IsPlainScan(header) || !IsUsualSampling(header))
        return std::nullopt;
    Frame frame;
    frame.width = static_cast<int>(header.image_width);
    frame.height = static_cast<int>(header.image_height);
    frame.restartInterval = header.restart_interval;
    frame.scan = { header.src->next_input_byte, header.src->bytes_in_buffer };
    for (int i = 0; i < header.num_components; ++i) {
        const std::optional<Component> component = ComponentOf(header, header.comp_info[i]);
        if (!component)
            return std::nullopt;
        frame.components.push_back(*component);
    }
    return frame;
}

} // namespace veltrane::imaging::jpeg::baseline
