#include "platform/codecs/jpeg/Encode.h"

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

#include "platform/Exceptions.h"
#include "platform/codecs/jpeg/Pixels.h"
#include "platform/codecs/jpeg/Sample.h"
#include "platform/codecs/jpeg/Writer.h"

namespace veltrane::codecs::jpeg {

namespace {

constexpr int kOwnChoice = 75;

void WriteOnWhite(Writer& writer, const Bitmap& picture)
{
    constexpr int kAtOnce = 16;
    std::vector<std::uint8_t> strip(picture.Stride() * kAtOnce);
    for (int y = 0; y < picture.Height(); y += kAtOnce) {
        const int count = std::min(kAtOnce, picture.Height() - y);
        LayOnWhite(picture.Row(y), strip.data(),
            static_cast<std::size_t>(count) * static_cast<std::size_t>(picture.Width()));
        writer.Rows(strip.data(), picture.Stride(), count);
    }
}

} // namespace

void Encode(const Bitmap& picture, int quality, Sink& sink)
{
    try {
        const Content content = Examine(picture);
        const int kept = quality < 0 ? kOwnChoice : std::min(quality, 100);
        Form form { picture.Width(), picture.Height(), kept, content.grey };
        const std::optional<Tables> tables = SampledTables(picture, form);
        form.tables = tables ? &*tables : nullptr;
        Writer writer(form, sink);
        if (content.opaque)
            writer.Rows(picture.Row(0), picture.Stride(), picture.Height());
        else
            WriteOnWhite(writer, picture);
        writer.Finish();
    } catch (const std::bad_alloc&) {
        throw OutOfMemoryException("mémoire insuffisante pour cette image");
    }
}

} // namespace veltrane::codecs::jpeg
