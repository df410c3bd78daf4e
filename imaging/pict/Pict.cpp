#include "imaging/pict/Pict.h"

#include "imaging/Codec.h"
#include "imaging/Fault.h"
#include "imaging/pict/Header.h"
#include "imaging/pict/Player.h"

namespace veltrane::imaging {

namespace {

// What drawing needs beside the pixels: rows, regions and patterns, all bounded.
constexpr std::int64_t kWorkingBytes = 32 << 20;

// A frame of gigapixels takes ten bytes to write, and one drawing opcode to fill. Bitmaps pack at most 512
// pixels into a byte, and drawings that large are made for no screen or printer.
void CheckProportion(const pict::Rect& frame, std::size_t fileBytes)
{
    constexpr std::int64_t kAlwaysFine = std::int64_t { 1 } << 26;
    constexpr std::int64_t kMostPerByte = 1024;
    const std::int64_t pixels = std::int64_t { frame.Width() } * frame.Height();
    if (pixels > kAlwaysFine && pixels / kMostPerByte > static_cast<std::int64_t>(fileBytes))
        throw Fault(Fault::PictFrameOutOfProportion);
}

Bitmap Decode(Bytes file, const Limits& limits)
{
    const pict::Header header = pict::ReadHeader(file);
    limits.Check(header.frame.Width(), header.frame.Height(), kWorkingBytes);
    CheckProportion(header.frame, file.size());
    return pict::Play(file, header, limits);
}

} // namespace

constexpr Codec kPict { "PICT", pict::LooksLikePicture, Decode, nullptr };

} // namespace veltrane::imaging
