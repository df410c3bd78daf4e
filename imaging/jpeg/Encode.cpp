#include "imaging/jpeg/Encode.h"

#include <algorithm>
#include <optional>

#include "imaging/jpeg/OnWhite.h"
#include "imaging/jpeg/Pixels.h"
#include "imaging/jpeg/Sample.h"
#include "imaging/jpeg/Writer.h"

namespace veltrane::imaging::jpeg {

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

} // namespace veltrane::imaging::jpeg
