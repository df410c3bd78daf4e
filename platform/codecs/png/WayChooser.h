#pragma once

#include <cstdint>
#include <memory>

#include "platform/codecs/Bitmap.h"
#include "platform/codecs/png/Form.h"
#include "platform/codecs/png/StoredRows.h"
#include "platform/codecs/png/Trial.h"
#include "platform/codecs/png/Way.h"

namespace veltrane::codecs::png {

/// Chooses for each band of a picture how it is stored: by what it looks like, and by trying where that
/// leaves it open.
class WayChooser {
public:
    /// `picture` and `form` must outlive this.
    WayChooser(const Bitmap& picture, const Form& form);

    /// For the rows [from, to), which come in turn; all bands but the last are alike.
    [[nodiscard]] Way WayFor(int from, int to);

private:
    [[nodiscard]] Way PhotoOrGrain(int from, int to);
    [[nodiscard]] Way AnyWay(int from, int to);
    [[nodiscard]] std::uint64_t BitsOf(Way way, const Columns& columns, int from, int to);

    const Bitmap& picture;
    const Form& form;
    std::size_t width; ///< of the picture
    std::unique_ptr<Trial> trial;
    Verdict natural, shaded;
};

} // namespace veltrane::codecs::png
