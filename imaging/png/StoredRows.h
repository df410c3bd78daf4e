#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/deflate/Layout.h"
#include "imaging/pixels/Bitmap.h"
#include "imaging/png/Form.h"

namespace veltrane::imaging::png {

/// Pixels of each row, from the left.
struct Columns {
    std::size_t left, width;
};

/// Makes a picture's rows as a file has them, one behind the other, filtered or not.
class StoredRows {
public:
    /// Begins with row `from`. Parts of rows only in a form whose pixels take whole bytes. `picture` and
    /// `form` must outlive this.
    StoredRows(const Bitmap& picture, const Form& form, const Columns& columns, int from = 0);

    [[nodiscard]] const Layout& RowLayout() const noexcept { return layout; }

    /// Writes the rows up to row `to`, which has Layout::stride bytes for each and 32 more; the end of them.
    std::uint8_t* Write(std::uint8_t* end, int to, bool filtered);

private:
    // A packed row with the margins that filters want.
    class PackedRow {
    public:
        explicit PackedRow(std::size_t bytes);
        [[nodiscard]] std::uint8_t* Data() noexcept;

    private:
        std::vector<std::uint8_t> bytes;
    };

    void Pack(int y);

    const Bitmap& picture;
    const Form& form;
    Columns columns;
    std::size_t rowBytes;
    Layout layout;
    PackedRow current, above;
    int next;
};

} // namespace veltrane::imaging::png
