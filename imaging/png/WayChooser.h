#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "imaging/pixels/Bitmap.h"
#include "imaging/png/Form.h"
#include "imaging/png/StoredRows.h"
#include "imaging/png/Trial.h"
#include "imaging/png/Way.h"

namespace veltrane::imaging::png {

/// Chooses for each band of a picture how it is stored: by what it looks like, and by trying where that
/// leaves it open.
class WayChooser {
public:
    /// `picture` and `form` must outlive this.
    WayChooser(const Bitmap& picture, const Form& form);

    /// For the rows [from, to), which come in turn; all bands but the last are alike.
    [[nodiscard]] Way WayFor(int from, int to);

private:
    // Rows, or parts of them, to try ways on.
    struct Patch {
        Layout layout;
        std::vector<std::uint8_t> bytes;
        std::size_t rows;
    };
    [[nodiscard]] Way PhotoOrGrain(int from, int to);
    [[nodiscard]] Way AnyWay(int from, int to);
    [[nodiscard]] Patch PatchOf(const Columns& columns, int from, int to, bool filtered) const;
    [[nodiscard]] std::uint64_t BitsOf(Way way, const Patch& patch);

    const Bitmap& picture;
    const Form& form;
    std::size_t width; ///< of the picture
    std::unique_ptr<Trial> trial;
    Verdict natural, shaded;
};

} // namespace veltrane::imaging::png
