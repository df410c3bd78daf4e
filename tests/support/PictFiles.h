#pragma once

#include <cctype>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "imaging/Codec.h"
#include "imaging/pict/Pict.h"

namespace veltrane::tests {

/// The bytes of a file that tests/data/pict/make.py made.
inline std::vector<std::uint8_t> PictFile(std::string_view name)
{
    std::ifstream file(TEST_DATA "/pict/" + std::string(name) + ".pict", std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

inline imaging::Bitmap DecodePict(std::string_view name, const imaging::Limits& limits = {})
{
    return imaging::kPict.decode(PictFile(name), limits);
}

/// A pixel as six hexadecimal digits; with two more when it is not opaque.
inline std::string HexOf(const std::uint8_t* pixel)
{
    std::string digits;
    for (int i = 0; i < (pixel[3] == 255 ? 3 : 4); ++i) {
        digits += "0123456789abcdef"[pixel[i] >> 4];
        digits += "0123456789abcdef"[pixel[i] & 15];
    }
    return digits;
}

/// A picture of plain colours as rows of letters, each row ended by a line feed: "#" black, "." white, and
/// the first letters of red, green, blue, cyan, magenta, yellow. Any other colour is a "?".
inline std::string Letters(const imaging::Bitmap& picture)
{
    constexpr std::string_view kColours = "000000# ffffff. ff0000r 00ff00g 0000ffb 00ffffc ff00ffm ffff00y";
    std::string rows;
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            const std::size_t at = kColours.find(HexOf(picture.Row(y) + 4 * x));
            rows += at == std::string_view::npos || at % 8 != 0 ? '?' : kColours[at + 6];
        }
        rows += '\n';
    }
    return rows;
}

inline std::string Repeated(std::string_view rows)
{
    std::string out;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        std::size_t times = 0;
        for (; std::isdigit(static_cast<unsigned char>(rows[i])) != 0; ++i)
            times = times * 10 + static_cast<std::size_t>(rows[i] - '0');
        std::string piece(1, rows[i] == ' ' ? '\n' : rows[i]);
        if (rows[i] == '(') {
            const std::size_t end = rows.find(')', i);
            piece = Repeated(rows.substr(i + 1, end - i - 1));
            i = end;
        }
        for (std::size_t n = 0; n < (times == 0 ? 1 : times); ++n)
            out += piece;
    }
    return out;
}

/// Rows as the tables write them, "2(.4#. )8r" with blanks between rows: a number repeats what follows, a
/// letter or something in brackets.
inline std::string Expanded(std::string_view rows)
{
    const std::string out = Repeated(rows);
    return out.ends_with('\n') ? out : out + '\n';
}

} // namespace veltrane::tests
