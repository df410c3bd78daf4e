#include "imaging/png/StoredRows.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "imaging/png/FilterRow.h"
#include "imaging/png/Packing.h"

namespace veltrane::imaging::png {

StoredRows::PackedRow::PackedRow(std::size_t bytes) : bytes(bytes + 2 * kRowMargin) { }

std::uint8_t* StoredRows::PackedRow::Data() noexcept
{
    return bytes.data() + kRowMargin;
}

StoredRows::StoredRows(const Bitmap& picture, const Form& form, const Columns& columns, int from)
    : picture(picture)
    , form(form)
    , columns(columns)
    , rowBytes((columns.width * form.BitsPerPixel() + 7) / 8)
    , layout { form.Step(), rowBytes + 1 }
    , current(std::max(rowBytes, columns.width))
    , above(std::max(rowBytes, columns.width))
    , next(from)
{
    if (from > 0) {
        Pack(from - 1);
        std::swap(current, above);
    }
}

void StoredRows::Pack(int y)
{
    if (form.samples)
        PackIndices(form, picture.Indices(y) + columns.left, current.Data(), columns.width);
    else
        PackRow(form, picture.Row(y) + columns.left * Bitmap::kBytesPerPixel, current.Data(), columns.width);
    // Filters look a little behind the row: what they see there must not depend on the processor.
    std::memset(current.Data() + rowBytes, 0, kRowMargin);
}

std::uint8_t* StoredRows::Write(std::uint8_t* end, int to, bool filtered)
{
    for (; next < to; ++next) {
        Pack(next);
        Filter filter = kNone;
        if (filtered)
            filter = BestFilter(current.Data(), above.Data(), rowBytes, layout.step);
        *end++ = filter;
        FilterRow(filter, current.Data(), above.Data(), end, rowBytes, layout.step);
        end += rowBytes;
        std::swap(current, above);
    }
    return end;
}

} // namespace veltrane::imaging::png
