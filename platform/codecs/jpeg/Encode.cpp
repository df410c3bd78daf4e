#include "platform/codecs/jpeg/Encode.h"

#include <algorithm>
#include <optional>

#include "platform/codecs/jpeg/OnWhite.h"
#include "platform/codecs/jpeg/Pixels.h"
#include "platform/codecs/jpeg/Sample.h"
#include "platform/codecs/jpeg/Writer.h"

namespace veltrane::codecs::jpeg {

namespace {

constexpr int kOwnChoice = 75;

} // namespace

void Encode(const Bitmap& picture, int quality, Sink& sink)
{
    const Content content = Examine(picture);
    const int kept = quality < 0 ? kOwnChoice : std::min(quality, 100);
    Form form { picture.Width(), picture.Height(), kept, content.grey };
    OnWhite pixels(picture, content.opaque);
    const std::optional<Tables> tables = SampledTables(pixels, form);
    form.tables = tables ? &*tables : nullptr;
    Writer writer(form, sink);
    for (int y = 0; y < form.height; y += OnWhite::kAtOnce) {
        const int count = std::min(OnWhite::kAtOnce, form.height - y);
        writer.Rows(pixels.Rows(y, count), picture.Stride(), count);
    }
    writer.Finish();
}

} // namespace veltrane::codecs::jpeg
